#pragma once

#include "core/resample_thr_arg.h"

/// Resamples one block of output lines: for every output pixel the mapping is asked where it
/// lies in the slave, and the slave is interpolated there with the kernel's range and azimuth
/// weights, each kernel row deramped by the Doppler centroid phase and the sum ramped again.
/// A pixel whose position is too close to the slave's edge, outside it or not a number is left
/// as the output raster was created, in the image and in the mask.
///
/// The output has the slave's pixel type. `RefusePixelType` for one without a codec.
void ResampleBlock(const RESAMPLE_THR_ARG& argument);
