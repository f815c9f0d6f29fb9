#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

/// Tells a person at a terminal how far the run is, for as long as it lives. Without a terminal it
/// does nothing and no thread is created.
class PROGRESS_LINE {
 public:
  /// Watches the count, which must outlive the line, on its way to `pixels`.
  PROGRESS_LINE(const std::atomic<std::int64_t>& pixels_done, std::int64_t pixels);
  ~PROGRESS_LINE();
  PROGRESS_LINE(const PROGRESS_LINE&) = delete;
  PROGRESS_LINE& operator=(const PROGRESS_LINE&) = delete;

 private:
  std::jthread ticker_;
};

/// " 45 %  312.4 Mpixel/s  0:01:12 left"; what cannot be told before the first pixels are done is
/// left out.
std::string ProgressText(std::int64_t pixels_done, std::int64_t pixels,
                         std::chrono::duration<double> elapsed);
