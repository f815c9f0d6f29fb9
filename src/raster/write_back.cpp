#include "raster/write_back.h"

#include <chrono>
#include <new>
#include <system_error>
#include <utility>

WRITE_BACK::WRITE_BACK(std::vector<const MEM_MGR*> rasters) : rasters_(std::move(rasters)) {
  try {
    thread_ = std::thread(&WRITE_BACK::CarryOverUntilEnded, this);
  } catch (const std::system_error&) {  // too many threads: all is carried over at the end
  } catch (const std::bad_alloc&) {
  }
}

/// Allocates nothing: an error must not leave a thread.
void WRITE_BACK::CarryOverUntilEnded() {
  // Pages on their way to the disk have to be had anew by the workers, which are not done with all
  // of them: more often costs more time than it saves.
  constexpr std::chrono::seconds period(1);
  std::unique_lock lock(mutex_);
  while (!ended_.wait_for(lock, period, [this] { return has_ended_; })) {
    for (const MEM_MGR* raster : rasters_) {
      raster->StartWriteBack();
    }
  }
}

void WRITE_BACK::End() {
  {
    const std::lock_guard lock(mutex_);
    has_ended_ = true;
  }
  ended_.notify_all();
  if (thread_.joinable()) {
    thread_.join();
  }
}

void WRITE_BACK::Finish() {
  End();
  for (const MEM_MGR* raster : rasters_) {
    raster->Flush();
  }
}
