#pragma once

#include <span>
#include <type_traits>

#include "core/pixel_codec.h"
#include "core/resample_thr_arg.h"

/// Resamples a block, given the row tables of the slave and of the output.
template <class CODEC>
using RESAMPLE_FUNCTION = void (*)(const RESAMPLE_THR_ARG& argument,
                                   const typename CODEC::PIXEL* const* input,
                                   typename CODEC::PIXEL* const* output);

struct ROW_FUNCTIONS;

/// One of the ways in which a block can be resampled.
struct CORE_VARIANT {
  const char* name;
  RESAMPLE_FUNCTION<INT_16_CODEC> int_16;
  RESAMPLE_FUNCTION<BINARY_16_CODEC> binary_16;
  bool (*is_supported)();          ///< by this processor
  const ROW_FUNCTIONS* functions;  ///< of the fast core; null for the plain one

  template <class CODEC>
  RESAMPLE_FUNCTION<CODEC> Function() const {
    if constexpr (std::is_same_v<CODEC, INT_16_CODEC>) {
      return int_16;
    } else {
      return binary_16;
    }
  }
};

/// "plain", then the fast core for the levels of the processor's kind, the fastest one last:
/// "x86-64", "x86-64-v3" and "x86-64-v4", or "aarch64".
std::span<const CORE_VARIANT> CoreVariants();

/// The fastest variant that the processor supports, or the one that the environment variable
/// RESAMPLE_SIMD names, and logs its name (DEBUG). A name that is none of the variants', or of one
/// that is not supported, is a WARNING and has no effect.
const CORE_VARIANT& ChooseCoreVariant();
