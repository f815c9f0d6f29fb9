#pragma once

#include "core/resample_thr_arg.h"

/// What a worker does: resamples its block by the pixel type of the slave. Throws ERROR_DATA when
/// slave and output differ in type, and the text "not supported pixel type" for a type other
/// than complex 16-bit integer and complex binary16.
void ResampleThread(RESAMPLE_THR_ARG& argument);

/// Throws, after its ALARM line, the text that a worker throws for a slave of this pixel type, if
/// it does.
void CheckPixelTypeIsSupported(PIXEL_TYPE type);
