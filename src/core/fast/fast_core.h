#pragma once

#include "core/fast/row_functions.h"
#include "core/pixel_codec.h"
#include "core/resample_thr_arg.h"

/// Does what `ResampleBlock` does, several times faster. Results before encoding differ from those
/// of the plain core by less than 1e-12 of the footprint's absolute weighted sum; which pixels are
/// computed, what they read, and their masks are equal. They do not depend on the block.
template <class CODEC>
void ResampleBlockFast(const RESAMPLE_THR_ARG& argument, const typename CODEC::PIXEL* const* input,
                       typename CODEC::PIXEL* const* output, const ROW_FUNCTIONS& functions);

extern template void ResampleBlockFast<INT_16_CODEC>(const RESAMPLE_THR_ARG&,
                                                     const INT_16_CODEC::PIXEL* const*,
                                                     INT_16_CODEC::PIXEL* const*,
                                                     const ROW_FUNCTIONS&);
extern template void ResampleBlockFast<BINARY_16_CODEC>(const RESAMPLE_THR_ARG&,
                                                        const BINARY_16_CODEC::PIXEL* const*,
                                                        BINARY_16_CODEC::PIXEL* const*,
                                                        const ROW_FUNCTIONS&);
