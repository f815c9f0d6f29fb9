#pragma once

#include <span>

#include "core/resample_thr_arg.h"

struct ROW_FUNCTIONS;

/// One of the ways in which a block can be resampled.
struct CORE_VARIANT {
  const char* name;
  bool (*is_supported)();          ///< by this processor
  const ROW_FUNCTIONS* functions;  ///< of the fast core; null for the plain one

  /// What `ResampleBlock` does.
  void Resample(const RESAMPLE_THR_ARG& argument) const;
};

/// "plain", then the fast core for the levels of the processor's kind, the fastest one last:
/// "x86-64", "x86-64-v3" and "x86-64-v4", or "aarch64".
std::span<const CORE_VARIANT> CoreVariants();

/// The fastest variant that the processor supports, or the one that the environment variable
/// RESAMPLE_SIMD names, and logs its name (DEBUG). A name that is none of the variants', or of one
/// that is not supported, is a WARNING and has no effect.
const CORE_VARIANT& ChooseCoreVariant();
