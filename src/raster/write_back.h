#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "raster/mem_mgr.h"

/// Carries rasters over to their disks: early what is written while this lives, in a thread of its
/// own, so that little is left to wait for when all is written. The rasters must stay mapped.
class WRITE_BACK {
 public:
  /// A thread that can not be had is done without.
  explicit WRITE_BACK(std::vector<const MEM_MGR*> rasters);
  ~WRITE_BACK() { End(); }
  WRITE_BACK(const WRITE_BACK&) = delete;
  WRITE_BACK& operator=(const WRITE_BACK&) = delete;

  /// Waits until all is on the disk. Throws ERROR_CAN_NOT_MSYNC when some of it can not be, which
  /// full and failing disks may tell as late as now.
  void Finish();

 private:
  void CarryOverUntilEnded();
  void End();

  std::vector<const MEM_MGR*> rasters_;
  std::mutex mutex_;
  std::condition_variable ended_;
  bool has_ended_ = false;
  std::thread thread_;
};
