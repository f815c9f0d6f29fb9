#include "raster/write_back.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <utility>

WRITE_BACK::WRITE_BACK(std::vector<const MEM_MGR*> rasters) : rasters_(std::move(rasters)) {
  try {
    thread_ = std::jthread([this](const std::stop_token& stop) { CarryOverUntilStopped(stop); });
  } catch (const std::system_error&) {  // too many threads: all is carried over at the end
  }
}

void WRITE_BACK::CarryOverUntilStopped(const std::stop_token& stop) const {
  constexpr std::chrono::milliseconds period(250);
  std::mutex mutex;
  std::unique_lock lock(mutex);
  std::condition_variable_any stopped;
  while (!stopped.wait_for(lock, stop, period, [&] { return stop.stop_requested(); })) {
    for (const MEM_MGR* raster : rasters_) {
      raster->StartWriteBack();
    }
  }
}

void WRITE_BACK::Finish() {
  thread_ = {};  // ends it
  for (const MEM_MGR* raster : rasters_) {
    raster->Flush();
  }
}
