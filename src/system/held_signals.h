#pragma once

#include <csignal>

/// Makes the signals that come from outside wait while it lives, for steps that must not be left
/// half done. Faults of the thread's own are not held, they can not wait.
class HELD_SIGNALS {
 public:
  HELD_SIGNALS() noexcept;
  ~HELD_SIGNALS();
  HELD_SIGNALS(const HELD_SIGNALS&) = delete;
  HELD_SIGNALS& operator=(const HELD_SIGNALS&) = delete;

 private:
  sigset_t before_{};
};

/// Makes writing to a pipe that has lost its reader fail with EPIPE instead of ending the process,
/// while it lives and in the calling thread.
class NO_PIPE_SIGNAL {
 public:
  NO_PIPE_SIGNAL() noexcept;
  ~NO_PIPE_SIGNAL();
  NO_PIPE_SIGNAL(const NO_PIPE_SIGNAL&) = delete;
  NO_PIPE_SIGNAL& operator=(const NO_PIPE_SIGNAL&) = delete;

 private:
  sigset_t before_{};
  bool was_pending_ = false;
};
