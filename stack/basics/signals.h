#pragma once

#include <chrono>
#include <csignal>

/// Takes the signals that tell of children, those that ask for the end and SIGUSR1, with which a
/// queue announces a time limit, for as long as it lives: nothing is interrupted by them, they wait
/// until somebody looks. Signals that the process was told to ignore, as by nohup, stay ignored.
class SIGNALS {
 public:
  SIGNALS() noexcept;
  ~SIGNALS();
  SIGNALS(const SIGNALS&) = delete;
  SIGNALS& operator=(const SIGNALS&) = delete;

  /// Returns when a child has ended, the end is asked for, or the time is over; at once where a
  /// signal waits. Every waiting signal is noted then.
  void Wait(std::chrono::milliseconds time);

  /// The signal noted so far that asked for the end, or 0. It stays.
  int EndAsked() const noexcept { return end_asked_; }
  /// Whether a time limit has been announced.
  bool IsTimeShort() const noexcept { return is_time_short_; }

 private:
  void Note(int signal) noexcept;

  sigset_t taken_{};
  sigset_t before_{};
  int end_asked_ = 0;
  bool is_time_short_ = false;
};
