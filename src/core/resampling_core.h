#pragma once

#include "core/pixel_codec.h"
#include "core/resample_thr_arg.h"

/// Resamples one block of output lines: for every output pixel the mapping is asked where it
/// lies in the slave, and the slave is interpolated there with the kernel's range and azimuth
/// weights, each kernel row deramped by the Doppler centroid phase and the sum ramped again.
/// A pixel whose position is too close to the slave's edge, outside it or not a number is left
/// as the output raster was created, in the image and in the mask.
///
/// `input` and `output` are row tables: input[line][sample].
template <class CODEC>
void ResampleBlock(const RESAMPLE_THR_ARG& argument, const typename CODEC::PIXEL* const* input,
                   typename CODEC::PIXEL* const* output);

extern template void ResampleBlock<INT_16_CODEC>(const RESAMPLE_THR_ARG&,
                                                 const INT_16_CODEC::PIXEL* const*,
                                                 INT_16_CODEC::PIXEL* const*);
extern template void ResampleBlock<BINARY_16_CODEC>(const RESAMPLE_THR_ARG&,
                                                    const BINARY_16_CODEC::PIXEL* const*,
                                                    BINARY_16_CODEC::PIXEL* const*);
