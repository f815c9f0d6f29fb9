#pragma once

#include <chrono>
#include <csignal>

/// Takes the signals that tell of children and those that ask for the end, for as long as it lives:
/// nothing is interrupted by them, they wait until somebody looks.
class SIGNALS {
 public:
  SIGNALS() noexcept;
  ~SIGNALS();
  SIGNALS(const SIGNALS&) = delete;
  SIGNALS& operator=(const SIGNALS&) = delete;

  /// Returns when a child has ended, the end is asked for, or the time is over.
  void Wait(std::chrono::milliseconds time);
  /// The signal that asked for the end, or 0. It stays.
  int EndAsked();

 private:
  void Note(int signal) noexcept;

  sigset_t taken_{};
  sigset_t before_{};
  int end_asked_ = 0;
};
