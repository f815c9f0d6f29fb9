#include "run/signals.h"

#include <ctime>

SIGNALS::SIGNALS() noexcept {
  ::sigemptyset(&taken_);
  for (const int signal : {SIGCHLD, SIGINT, SIGTERM, SIGHUP}) {
    ::sigaddset(&taken_, signal);
  }
  ::sigprocmask(SIG_BLOCK, &taken_, &before_);
}

SIGNALS::~SIGNALS() {
  ::sigprocmask(SIG_SETMASK, &before_, nullptr);
}

void SIGNALS::Wait(std::chrono::milliseconds time) {
  constexpr long nanoseconds_a_millisecond = 1'000'000;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  const timespec limit = {
      .tv_sec = static_cast<std::time_t>(seconds.count()),
      .tv_nsec = static_cast<long>((time - seconds).count()) * nanoseconds_a_millisecond};
  Note(::sigtimedwait(&taken_, nullptr, &limit));
}

int SIGNALS::EndAsked() {
  constexpr timespec at_once = {};
  for (int signal = 0; (signal = ::sigtimedwait(&taken_, nullptr, &at_once)) > 0;) {
    Note(signal);
  }
  return end_asked_;
}

void SIGNALS::Note(int signal) noexcept {
  if (signal > 0 && signal != SIGCHLD) {
    end_asked_ = signal;
  }
}
