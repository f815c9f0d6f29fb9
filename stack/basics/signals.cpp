#include "basics/signals.h"

#include <ctime>

namespace {

bool IsIgnored(int signal) noexcept {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && (action.sa_flags & SA_SIGINFO) == 0 &&
         action.sa_handler == SIG_IGN;
}

}  // namespace

SIGNALS::SIGNALS() noexcept {
  ::sigemptyset(&taken_);
  for (const int signal : {SIGCHLD, SIGINT, SIGTERM, SIGHUP, SIGUSR1}) {
    if (!IsIgnored(signal)) {
      ::sigaddset(&taken_, signal);
    }
  }
  ::sigprocmask(SIG_BLOCK, &taken_, &before_);
}

SIGNALS::~SIGNALS() {
  ::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

void SIGNALS::Wait(std::chrono::milliseconds time) {
  constexpr long nanoseconds_a_millisecond = 1'000'000;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  timespec limit = {
      .tv_sec = static_cast<std::time_t>(seconds.count()),
      .tv_nsec = static_cast<long>((time - seconds).count()) * nanoseconds_a_millisecond};
  for (int signal = 0; (signal = ::sigtimedwait(&taken_, nullptr, &limit)) > 0;) {
    Note(signal);
    limit = {};
  }
}

void SIGNALS::Note(int signal) noexcept {
  if (signal == SIGUSR1) {
    is_time_short_ = true;
  } else if (signal != SIGCHLD) {
    end_asked_ = signal;
  }
}
