#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

#include <type_traits>
#include <utility>

#include "core/fast/rows/lengths.h"
#include "core/fast/rows/pixels.h"
#include "core/fast/rows/transpose.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

// Sums along range. However one comes about, for a run of columns or for a single one, its even
// taps are summed first and its odd ones apart from them, so that its bits are the same.

/// The weights of as many columns as there are lanes, from rows of a strip's columns.
class STRIP_WEIGHTS {
 public:
  explicit STRIP_WEIGHTS(const double* weights) : weights_(weights) {}
  LANES operator[](int j) const { return Load(weights_ + std::ptrdiff_t{j} * strip_columns); }

 private:
  const double* weights_;
};

/// The same from kernel rows, one a column. Where the length is known, registers hold them.
template <int LENGTH>
class KERNEL_WEIGHTS {
 public:
  KERNEL_WEIGHTS(const double* const* kernel_rows, int length) {
#pragma GCC unroll 8
    for (int i = 0; i < (LENGTH > 0 ? squares : (length + lanes - 1) / lanes); ++i) {
      LoadTransposed(kernel_rows, i * lanes, held_[i]);
    }
  }
  LANES operator[](int j) const {
    return held_[j / lanes][j % lanes];
  }

 private:
  static constexpr int squares = ((LENGTH > 0 ? LENGTH : longest_kernel) + lanes - 1) / lanes;
  LANES held_[squares][lanes];
};

/// The samples that as many columns as there are lanes read, tap by tap.
class LOADED_SAMPLES {
 public:
  explicit LOADED_SAMPLES(const double* samples) : samples_(samples) {}
  template <int TAP>
  [[gnu::always_inline]] LANES Of() const {
    return Load(samples_ + TAP);
  }

 private:
  const double* samples_;
};
/// The same, made of as few loads as can be.
template <int LENGTH>
class SHIFTED_SAMPLES {
 public:
  explicit SHIFTED_SAMPLES(const double* samples) {
    for (int i = 0; i < vectors; ++i) {
      held_[i] = Load(samples + std::ptrdiff_t{i} * lanes);
    }
  }
  template <int TAP>
  [[gnu::always_inline]] LANES Of() const {
    if constexpr (TAP % lanes == 0) {
      return held_[TAP / lanes];
    } else {
      return Shifted<TAP % lanes>(held_[TAP / lanes], held_[TAP / lanes + 1]);
    }
  }

 private:
  static constexpr int vectors = (LENGTH + 2 * lanes - 2) / lanes;
  LANES held_[vectors];
};

template <int LENGTH>
using TAP_SAMPLES = std::conditional_t<loads_are_dear, SHIFTED_SAMPLES<LENGTH>, LOADED_SAMPLES>;

template <int TAP, class WEIGHTS, class SAMPLES>
[[gnu::always_inline]] inline void AddTap(const WEIGHTS& weights, const SAMPLES& re,
                                          const SAMPLES& im, COMPLEX_LANES& sum) {
  sum.re = MultiplyAdd(weights[TAP], re.template Of<TAP>(), sum.re);
  sum.im = MultiplyAdd(weights[TAP], im.template Of<TAP>(), sum.im);
}

template <class WEIGHTS, class SAMPLES, int... PAIR>
[[gnu::always_inline]] inline COMPLEX_LANES SumOfPairs(const WEIGHTS& weights, const SAMPLES& re,
                                                       const SAMPLES& im,
                                                       std::integer_sequence<int, PAIR...>) {
  COMPLEX_LANES even = {weights[0] * re.template Of<0>(), weights[0] * im.template Of<0>()};
  COMPLEX_LANES odd = {weights[1] * re.template Of<1>(), weights[1] * im.template Of<1>()};
  ((AddTap<2 * PAIR + 2>(weights, re, im, even), AddTap<2 * PAIR + 3>(weights, re, im, odd)), ...);
  return {even.re + odd.re, even.im + odd.im};
}

template <class WEIGHTS>
[[gnu::always_inline]] inline COMPLEX_LANES SumOfAnyLength(const WEIGHTS& weights, const double* re,
                                                           const double* im, int taps) {
  COMPLEX_LANES even = {weights[0] * Load(re), weights[0] * Load(im)};
  COMPLEX_LANES odd = {weights[1] * Load(re + 1), weights[1] * Load(im + 1)};
#pragma GCC unroll 8
  for (int j = 2; j + 1 < taps; j += 2) {
    even.re = MultiplyAdd(weights[j], Load(re + j), even.re);
    even.im = MultiplyAdd(weights[j], Load(im + j), even.im);
    odd.re = MultiplyAdd(weights[j + 1], Load(re + j + 1), odd.re);
    odd.im = MultiplyAdd(weights[j + 1], Load(im + j + 1), odd.im);
  }
  if (taps % 2 != 0) {
    even.re = MultiplyAdd(weights[taps - 1], Load(re + taps - 1), even.re);
    even.im = MultiplyAdd(weights[taps - 1], Load(im + taps - 1), even.im);
  }
  return {even.re + odd.re, even.im + odd.im};
}

template <int LENGTH, class WEIGHTS>
[[gnu::always_inline]] inline COMPLEX_LANES SumAlongRange(const WEIGHTS& weights, const double* re,
                                                          const double* im, int length) {
  if constexpr (LENGTH > 0) {
    static_assert(LENGTH % 2 == 0);
    return SumOfPairs(weights, TAP_SAMPLES<LENGTH>(re), TAP_SAMPLES<LENGTH>(im),
                      std::make_integer_sequence<int, LENGTH / 2 - 1>());
  } else {
    return SumOfAnyLength(weights, re, im, length);
  }
}

/// Leaves sums of columns that are not wanted as they are.
[[gnu::always_inline]] inline void StoreWanted(COMPLEX_LANES sum, unsigned wanted, double* re,
                                               double* im) {
  if (wanted != all_lanes) {
    const LANE_FLAGS flags = FlagsOf(wanted);
    sum = {Choose(flags, sum.re, Load(re)), Choose(flags, sum.im, Load(im))};
  }
  Store(sum.re, re);
  Store(sum.im, im);
}

template <int LENGTH>
void FilterRange(const double* weights, const double* pixels, std::ptrdiff_t decoded_im, int length,
                 int count, std::uint64_t columns, COMPLEX_ROW sums) {
  for (int x = 0; x < count; x += lanes) {
    const COMPLEX_LANES sum = SumAlongRange<LENGTH>(STRIP_WEIGHTS(weights + x), pixels + x,
                                                    pixels + x + decoded_im, length);
    StoreWanted(sum, static_cast<unsigned>(columns >> x) & all_lanes, sums.re + x, sums.im + x);
  }
}

template <int LENGTH>
void FilterGroup(const double* const* kernel_rows, const RING_LINES<double>& decoded,
                 std::ptrdiff_t decoded_im, int length, unsigned columns, const SUM_LINES& sums) {
  for (int x = 0; x < group_columns; x += lanes) {
    const unsigned wanted = (columns >> x) & all_lanes;
    if (wanted == 0) {
      continue;
    }
    const KERNEL_WEIGHTS<LENGTH> weights(kernel_rows + x, length);
    for (int k = 0; k < length; ++k) {
      const double* pixels = decoded.Line(k) + x;
      const COMPLEX_LANES sum = SumAlongRange<LENGTH>(weights, pixels, pixels + decoded_im, length);
      StoreWanted(sum, wanted, sums.Line(k).re + x, sums.Line(k).im + x);
    }
  }
}

/// A pair of numbers holds an even and an odd tap.
template <class PIXEL, int LENGTH>
void FilterFootprint(const PIXEL* const* lines, std::int64_t sample, const double* weights,
                     int length, int line_count, const SUM_LINES& sums) {
  const int taps = LENGTH > 0 ? LENGTH : length;
  // A tap without a partner gets one whose weight and pixels are 0.
  COMPLEX_PAIRS twice_each[((LENGTH > 0 ? LENGTH : longest_kernel) + 1) / 2];
  for (int j = 0; j + 1 < taps; j += 2) {
    twice_each[j / 2] = TwiceEach(weights + j);
  }
  if (taps % 2 != 0) {
    const double last[2] = {weights[taps - 1], 0.0};
    twice_each[taps / 2] = TwiceEach(last);
  }
  for (int k = 0; k < line_count; k += pair_lines) {
    const PIXEL* pixels[pair_lines];
    for (int i = 0; i < pair_lines; ++i) {
      pixels[i] = lines[k + i < line_count ? k + i : k] + sample;
    }
    COMPLEX_PAIRS sum = Multiply(twice_each[0], DecodePairs(pixels));
#pragma GCC unroll 8
    for (int j = 2; j + 1 < taps; j += 2) {
      for (const PIXEL*& pixel : pixels) {
        pixel += 2;
      }
      sum = MultiplyAdd(twice_each[j / 2], DecodePairs(pixels), sum);
    }
    if (taps % 2 != 0) {
      PIXEL last[pair_lines][2] = {};
      for (int i = 0; i < pair_lines; ++i) {
        __builtin_memcpy(static_cast<void*>(last[i]), static_cast<const void*>(pixels[i] + 2),
                         sizeof(PIXEL));
        pixels[i] = last[i];
      }
      sum = MultiplyAdd(twice_each[taps / 2], DecodePairs(pixels), sum);
    }
    COMPLEX<double> totals[pair_lines];
    StoreSums(sum, totals);
    for (int i = 0; i < pair_lines && k + i < line_count; ++i) {
      *sums.Line(k + i).re = totals[i].re;
      *sums.Line(k + i).im = totals[i].im;
    }
  }
}

}  // namespace
