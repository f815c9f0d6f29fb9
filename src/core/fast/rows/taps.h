#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

#include <utility>

#include "core/fast/row_functions.h"
#include "core/fast/rows/lanes.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

/// Puts values in the place of others. A set bit of the result is a lane in which they differ.
inline std::uint64_t Replace(double* held, int x, LANES values) {
  const std::uint64_t changed = MaskOf(~Equal(Load(held + x), values));
  Store(values, held + x);
  return changed << x;
}

/// The columns that read the sample behind that of the column before, of the same line.
inline std::uint64_t FindJoined(const double* sample, const double* line_shift) {
  const LANES zero{};
  LANES sample_before = zero + no_tap;
  LANES shift_before = zero + no_tap;
  std::uint64_t joined = 0;
  for (int x = 0; x < strip_columns; x += lanes) {
    const LANES samples = Load(sample + x);
    const LANES shifts = Load(line_shift + x);
    const LANE_FLAGS flags = Equal(samples, Shifted<lanes - 1>(sample_before, samples) + 1.0) &
                             Equal(shifts, Shifted<lanes - 1>(shift_before, shifts));
    joined |= std::uint64_t{MaskOf(flags)} << x;
    sample_before = samples;
    shift_before = shifts;
  }
  return joined;
}

/// The same steps as for a single position, in the same order.
TAP_CHANGES LocateTaps(const double* rg, const double* az, double line,
                       const POSITION_LIMITS& limits, double subpix_count, const TAP_ROWS& taps) {
  const LANES zero{};
  const LANES rg_above = zero + limits.rg_above;
  const LANES rg_below = zero + limits.rg_below;
  const LANES az_above = zero + limits.az_above;
  const LANES az_below = zero + limits.az_below;
  TAP_CHANGES changes{};
  for (int x = 0; x < strip_columns; x += lanes) {
    const LANES range = Load(rg + x);
    const LANES azimuth = Load(az + x);
    const unsigned computed = MaskOf(Less(rg_above, range) & Less(range, rg_below) &
                                     Less(az_above, azimuth) & Less(azimuth, az_below));
    LANES sample = Floor(range);
    LANES line_shift = Floor(azimuth);
    const LANES fa = azimuth - line_shift;
    LANES range_step = Floor((range - sample) * subpix_count + 0.5);
    LANES azimuth_step = Floor(fa * subpix_count + 0.5);
    line_shift -= line;
    if (computed != all_lanes) {
      for (LANES* const values : {&sample, &line_shift, &range_step, &azimuth_step}) {
        *values = Choose(FlagsOf(computed), *values, zero + no_tap);
      }
    }
    Store(fa, taps.fa + x);
    changes.computed |= std::uint64_t{computed} << x;
    const LANE_FLAGS same = Equal(sample, Load(taps.sample + x)) &
                            Equal(line_shift, Load(taps.line_shift + x)) &
                            Equal(range_step, Load(taps.range_step + x)) &
                            Equal(azimuth_step, Load(taps.azimuth_step + x));
    if (MaskOf(same) != all_lanes) {
      changes.shifted |= Replace(taps.sample, x, sample) | Replace(taps.line_shift, x, line_shift);
      changes.range |= Replace(taps.range_step, x, range_step);
      changes.azimuth |= Replace(taps.azimuth_step, x, azimuth_step);
    }
  }
  if (changes.shifted != 0) {
    changes.joined = FindJoined(taps.sample, taps.line_shift);
  }
  return changes;
}

}  // namespace
