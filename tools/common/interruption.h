#pragma once

#include <csignal>
#include <thread>

/// While it lives, the signals that end a program from outside (SIGINT, SIGTERM, SIGHUP) end it
/// only after `RemoveNewFiles`. One that the program was started to ignore stays ignored. To be
/// made before any other thread.
class INTERRUPTION {
 public:
  INTERRUPTION();
  INTERRUPTION(const INTERRUPTION&) = delete;
  INTERRUPTION& operator=(const INTERRUPTION&) = delete;
  ~INTERRUPTION();

 private:
  void Wait() const noexcept;

  sigset_t signals_{};
  std::thread waiting_;
};
