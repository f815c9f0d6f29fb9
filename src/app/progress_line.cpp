#include "app/progress_line.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <system_error>

#include "logging/logging.h"
#include "system/c_locale.h"

namespace {

using CLOCK = std::chrono::steady_clock;

void ShowUntilStopped(const std::stop_token& stop, const std::atomic<std::int64_t>& pixels_done,
                      std::int64_t pixels) {
  constexpr std::chrono::milliseconds period(250);
  const CLOCK::time_point start = CLOCK::now();
  std::mutex mutex;
  std::unique_lock lock(mutex);
  std::condition_variable_any stopped;
  do {
    Log().ShowStatus(ProgressText(pixels_done, pixels, CLOCK::now() - start));
  } while (!stopped.wait_for(lock, stop, period, [&] { return stop.stop_requested(); }));
}

}  // namespace

PROGRESS_LINE::PROGRESS_LINE(const std::atomic<std::int64_t>& pixels_done, std::int64_t pixels) {
  if (!Log().CanShowStatus()) {
    return;
  }
  try {
    ticker_ = std::jthread([&pixels_done, pixels](const std::stop_token& stop) {
      ShowUntilStopped(stop, pixels_done, pixels);
    });
  } catch (const std::system_error&) {  // too many threads: the run does without the line
  }
}

PROGRESS_LINE::~PROGRESS_LINE() {
  if (ticker_.joinable()) {
    ticker_.request_stop();
    ticker_.join();
    Log().ShowStatus("");
  }
}

std::string ProgressText(std::int64_t pixels_done, std::int64_t pixels,
                         std::chrono::duration<double> elapsed) {
  const C_LOCALE c_locale;
  const double done = static_cast<double>(pixels_done) / static_cast<double>(pixels);
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), "%3.0f %%", std::floor(100.0 * done));
  const double seconds = elapsed.count();
  if (pixels_done <= 0 || seconds <= 0.0) {
    return text.data();
  }
  const double left = std::min(std::ceil(seconds / done - seconds), 359'999.0);
  const int seconds_left = static_cast<int>(left);
  std::snprintf(text.data(), text.size(), "%3.0f %%  %.1f Mpixel/s  %d:%02d:%02d left",
                std::floor(100.0 * done), static_cast<double>(pixels_done) / seconds * 1e-6,
                seconds_left / 3600, seconds_left / 60 % 60, seconds_left % 60);
  return text.data();
}
