#include "common/interruption.h"

#include <pthread.h>

#include "common/new_files.h"

namespace {

/// Wakes the waiting thread when nothing is to be waited for any more.
constexpr int no_more = SIGUSR2;

}  // namespace

INTERRUPTION::INTERRUPTION() {
  sigemptyset(&signals_);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
      sigaddset(&signals_, signal);
    }
  }
  sigaddset(&signals_, no_more);
  ::pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  waiting_ = std::thread([this] { Wait(); });
}

INTERRUPTION::~INTERRUPTION() {
  ::pthread_kill(waiting_.native_handle(), no_more);
  waiting_.join();
}

void INTERRUPTION::Wait() const noexcept {
  int signal = 0;
  if (::sigwait(&signals_, &signal) != 0 || signal == no_more) {
    return;
  }
  RemoveNewFiles();
  // With its usual effect, so that who waits for the program sees what ended it.
  sigset_t received;
  sigemptyset(&received);
  sigaddset(&received, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &received, nullptr);
  ::raise(signal);
}
