#pragma once

#include <atomic>
#include <cstdint>

#include "annotation/annotation_types.h"
#include "core/doppler_centroid_model.h"
#include "core/thread_argument.h"
#include "interpolation/interpolation_kernel.h"
#include "mapping/mapping_base.h"
#include "raster/mem_mgr.h"

/// What the workers of a resampling find in its pixels, together.
struct RESAMPLE_FINDINGS {
  std::atomic<std::int64_t> at_ends = 0;     ///< components stored as an end of their type's range
  std::atomic<bool> met_non_finite = false;  ///< or magnitudes of 2^30 and more, before encoding
};

/// One resampling as the workers see it. Everything is borrowed, see `RESAMPLE_INPUT`, and kept
/// alive until the workers are joined, and only the output rasters are written.
struct RESAMPLE_JOB {
  const MEM_MGR* input_slave = nullptr;
  const MEM_MGR* input_mask = nullptr;  ///< null when every pixel of the slave is valid
  int input_width = 0;                  ///< samples of the slave
  int input_height = 0;                 ///< lines of the slave
  MEM_MGR* output_slave = nullptr;
  MEM_MGR* output_mask = nullptr;  ///< null when nobody wants it
  int output_width = 0;            ///< samples of the master grid
  int output_height = 0;           ///< lines of the master grid
  const MAPPING_BASE* mapping = nullptr;
  const INTERPOLATION_KERNEL* kernel = nullptr;
  const DOPPLER_CENTROID_MODEL* doppler = nullptr;
  const ZARVO::ImageMode* imaging_mode = nullptr;
  bool ps_mode = false;
  /// Counts the pixels that the workers are done with; null when nobody watches.
  std::atomic<std::int64_t>* pixels_done = nullptr;
  RESAMPLE_FINDINGS* findings = nullptr;  ///< null when nobody asks

  /// Whether the phase of the Doppler centroid has a quadratic term.
  bool HasRateTerm() const { return !ps_mode && !imaging_mode->IsStripmap(); }
};

/// The argument record of a resampling worker: its block of output lines, and the job.
class RESAMPLE_THR_ARG : public THREAD_ARGUMENT {
 public:
  virtual void Set(const RESAMPLE_JOB& new_job) { job = new_job; }

  RESAMPLE_JOB job;
};
