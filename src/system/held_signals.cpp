#include "system/held_signals.h"

#include <array>
#include <cerrno>
#include <ctime>

namespace {

constexpr std::array own_faults = {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP};

sigset_t PipeSignal() noexcept {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  return signals;
}

}  // namespace

HELD_SIGNALS::HELD_SIGNALS() noexcept {
  sigset_t held;
  sigfillset(&held);
  for (const int own_fault : own_faults) {
    sigdelset(&held, own_fault);
  }
  ::pthread_sigmask(SIG_BLOCK, &held, &before_);
}

HELD_SIGNALS::~HELD_SIGNALS() {
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

NO_PIPE_SIGNAL::NO_PIPE_SIGNAL() noexcept {
  sigset_t pending;
  ::sigpending(&pending);
  was_pending_ = sigismember(&pending, SIGPIPE) == 1;
  const sigset_t pipe_signal = PipeSignal();
  ::pthread_sigmask(SIG_BLOCK, &pipe_signal, &before_);
}

NO_PIPE_SIGNAL::~NO_PIPE_SIGNAL() {
  const int error = errno;
  if (!was_pending_) {
    const sigset_t pipe_signal = PipeSignal();
    const timespec at_once{};
    ::sigtimedwait(&pipe_signal, nullptr, &at_once);
  }
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  errno = error;
}
