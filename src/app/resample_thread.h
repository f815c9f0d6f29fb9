#pragma once

#include "core/core_variant.h"
#include "core/resample_thr_arg.h"

/// The argument record with the core that is to do it.
class RESAMPLE_WORK : public RESAMPLE_THR_ARG {
 public:
  const CORE_VARIANT* core = nullptr;
};

/// What a worker does: resamples its block. Throws ERROR_DATA when slave and output differ in pixel
/// type, and the text of `RefusePixelType` for a type that is not resampled.
void ResampleThread(RESAMPLE_WORK& work);
