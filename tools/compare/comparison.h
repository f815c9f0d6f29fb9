#pragma once

#include <cstdint>

#include "common/pair_lines.h"

/// A rectangle of pixels.
struct REGION {
  std::int64_t first_sample = 0;
  std::int64_t first_line = 0;
  std::int64_t n_samples = 0;
  std::int64_t n_lines = 0;
};

/// How well a raster a fits a raster b. With <> the sum over the compared pixels, and
/// c = conj(<a conj(b)>) / <|a|^2> the factor that brings a closest to b:
struct COMPARISON {
  std::int64_t compared = 0;        ///< pixels that are valid, finite and not 0 in both
  double coherence = 0.0;           ///< |<a conj(b)>| / sqrt(<|a|^2> <|b|^2>)
  double phase_mean = 0.0;          ///< arg <a conj(b)> [rad]
  double phase_rms = 0.0;           ///< of arg(a conj(b)) about phase_mean [rad]
  double phase_rms_weighted = 0.0;  ///< the same, weighted by |b|^2 [rad]
  double amplitude_error = 0.0;     ///< sqrt(<(|c a| - |b|)^2> / <|b|^2>)
  double complex_error = 0.0;       ///< sqrt(<|c a - b|^2> / <|b|^2>)
  double gain = 0.0;                ///< 1 / |c|: amplitude of a relative to b
};

/// Compares within a region, going through it twice, on all processors. Without any pixel to
/// compare all figures but the count are NaN.
COMPARISON Compare(const PAIR_LINES& pair, const REGION& region);
