#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

/// Calls `handle(line)` once for every line 0 ... n_lines - 1, on all processors at once and
/// roughly in order. `handle` must not throw.
template <class HANDLE>
void ForEachLine(std::int64_t n_lines, const HANDLE& handle) {
  std::atomic<std::int64_t> next = 0;
  const auto work = [&] {
    for (std::int64_t line = next++; line < n_lines; line = next++) {
      handle(line);
    }
  };
  std::vector<std::jthread> helpers(std::max(1U, std::thread::hardware_concurrency()) - 1);
  for (std::jthread& helper : helpers) {
    helper = std::jthread(work);
  }
  work();
}
