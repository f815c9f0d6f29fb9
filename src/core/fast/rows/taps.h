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

template <int DISTANCE, int... LANE>
[[gnu::always_inline]] inline void ExchangeLanes(LANES& a, LANES& b,
                                                 std::integer_sequence<int, LANE...>) {
  const LANES first =
      __builtin_shufflevector(a, b, (LANE & DISTANCE) != 0 ? lanes + LANE - DISTANCE : LANE...);
  const LANES second =
      __builtin_shufflevector(a, b, (LANE & DISTANCE) != 0 ? lanes + LANE : LANE + DISTANCE...);
  a = first;
  b = second;
}

/// The steps by which a square of lanes is transposed. In a function of its own it would have to
/// lie in memory.
template <int DISTANCE>
[[gnu::always_inline]] inline void ExchangeRows(LANES (&square)[lanes]) {
  if constexpr (DISTANCE < lanes) {
    for (int i = 0; i < lanes; ++i) {
      if ((i & DISTANCE) == 0) {
        ExchangeLanes<DISTANCE>(square[i], square[i + DISTANCE],
                                std::make_integer_sequence<int, lanes>());
      }
    }
    ExchangeRows<2 * DISTANCE>(square);
  }
}

/// The columns j to j + count - 1 of as many rows as there are lanes.
[[gnu::always_inline]] inline void TransposeSquare(const double* const* rows, int j, int count,
                                                   double* to) {
  LANES square[lanes];
  for (int i = 0; i < lanes; ++i) {
    square[i] = count == lanes ? Load(rows[i] + j) : LoadFirst(rows[i] + j, count);
  }
  ExchangeRows<1>(square);
  for (int i = 0; i < count; ++i) {
    Store(square[i], to + std::ptrdiff_t{j + i} * strip_columns);
  }
}

void TransposeRows(const double* const* rows, int length, double* to) {
  for (int i = 0; i < group_columns; i += lanes) {
    int j = 0;
    for (; j + lanes <= length; j += lanes) {
      TransposeSquare(rows + i, j, lanes, to + i);
    }
    if (j < length && length >= lanes) {
      TransposeSquare(rows + i, length - lanes, lanes, to + i);
    } else if (j < length) {
      TransposeSquare(rows + i, 0, length, to + i);
    }
  }
}

}  // namespace
