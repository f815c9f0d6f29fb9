#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

#include <utility>

#include "core/fast/row_functions.h"
#include "core/fast/rows/lanes.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

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

/// The weights of as many taps as there are lanes, from tap `first` on: a vector a tap, with a lane
/// for each of the kernel rows. What pads the rows comes along.
[[gnu::always_inline]] inline void LoadTransposed(const double* const* kernel_rows, int first,
                                                  LANES (&taps)[lanes]) {
  for (int i = 0; i < lanes; ++i) {
    taps[i] = Load(kernel_rows[i] + first);
  }
  ExchangeRows<1>(taps);
}

void TransposeRows(const double* const* kernel_rows, int length, double* to) {
  for (int x = 0; x < group_columns; x += lanes) {
    for (int j = 0; j < length; j += lanes) {
      LANES taps[lanes];
      LoadTransposed(kernel_rows + x, j, taps);
      for (int i = 0; i < lanes && j + i < length; ++i) {
        Store(taps[i], to + std::ptrdiff_t{j + i} * strip_columns + x);
      }
    }
  }
}

}  // namespace
