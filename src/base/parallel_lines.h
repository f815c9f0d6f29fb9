#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

/// Calls `handle(line)` once for every line 0 ... n_lines - 1, on all processors at once and
/// roughly in order. What `handle` throws first ends the work and is thrown here.
template <class HANDLE>
void ForEachLine(std::int64_t n_lines, const HANDLE& handle) {
  std::atomic<std::int64_t> next = 0;
  std::once_flag has_failed;
  std::exception_ptr failure;
  const auto work = [&] {
    try {
      for (std::int64_t line = next++; line < n_lines; line = next++) {
        handle(line);
      }
    } catch (...) {
      next = n_lines;
      std::call_once(has_failed, [&] { failure = std::current_exception(); });
    }
  };
  {
    std::vector<std::jthread> helpers(std::max(1U, std::thread::hardware_concurrency()) - 1);
    for (std::jthread& helper : helpers) {
      helper = std::jthread(work);
    }
    work();
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
}
