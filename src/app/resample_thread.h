#pragma once

#include "core/core_variant.h"
#include "core/resample_thr_arg.h"

/// The argument record with the core that is to do it.
class RESAMPLE_WORK : public RESAMPLE_THR_ARG {
 public:
  const CORE_VARIANT* core = nullptr;
};

/// What a worker does: resamples its block by the pixel type of the slave. Throws ERROR_DATA when
/// slave and output differ in type, and the text "not supported pixel type" for a type other
/// than complex 16-bit integer and complex binary16.
void ResampleThread(RESAMPLE_WORK& work);

/// Throws, after its ALARM line, the text that a worker throws for a slave of this pixel type, if
/// it does.
void CheckPixelTypeIsSupported(PIXEL_TYPE type);
