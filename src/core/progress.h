#pragma once

#include "core/resample_thr_arg.h"

/// Logs how far the run is, at every tenth of the block's lines. Worker 0 begins at line 0, so its
/// own lines stand for the progress of the whole run; the others log nothing.
void LogProgress(const RESAMPLE_THR_ARG& argument, unsigned line);

/// Adds to the pixels that are done.
inline void CountDone(const RESAMPLE_JOB& job, std::int64_t pixels) {
  if (job.pixels_done != nullptr) {
    job.pixels_done->fetch_add(pixels, std::memory_order_relaxed);
  }
}
