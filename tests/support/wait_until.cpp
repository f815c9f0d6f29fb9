#include "support/wait_until.h"

#include <chrono>
#include <thread>

bool WaitUntil(const std::function<bool()>& condition) {
  constexpr int limit_in_steps = 3600;
  for (int step = 0; step < limit_in_steps; ++step) {
    if (condition()) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}
