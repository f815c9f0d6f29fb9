#pragma once

#include <cstdint>

#include "interpolation/interpolation_kernel.h"

/// Where the taps of the kernel lie around a position, the same along range and azimuth.
class FOOTPRINT {
 public:
  explicit FOOTPRINT(int length)
      : length_(length), half_(length / 2), offset_(std::int64_t{half_} - 1) {}

  int Length() const { return length_; }
  /// Distance from the first tap to the position's own pixel.
  std::int64_t Offset() const { return offset_; }

  /// Positions above this one are far enough from the first pixel.
  double LowerLimit() const { return half_; }
  /// Positions below this one are far enough from the end of an axis of `size` pixels: half the
  /// kernel away, and with the last tap inside. Odd lengths reach one tap further to the right
  /// than to the left.
  double UpperLimit(int size) const {
    const double last_tap_inside = static_cast<double>(std::int64_t{size} - length_ + offset_ + 1);
    const double half_a_kernel_away = static_cast<double>(size) - half_;
    return last_tap_inside < half_a_kernel_away ? last_tap_inside : half_a_kernel_away;
  }

  /// Whether a position along an axis of `size` pixels is computed. NaN and infinity are not.
  bool Fits(double position, int size) const {
    return LowerLimit() < position && position < UpperLimit(size);
  }

 private:
  int length_;
  int half_;
  std::int64_t offset_;
};

/// A position along one axis as the kernel sees it.
struct TAP_POSITION {
  std::int64_t first_tap;  ///< pixel of the first tap
  std::int64_t pixel;      ///< pixel at or before the position
  double fraction;         ///< of a pixel, not quantised
  int step;                ///< the fraction in sub-pixel steps: 0 up to and with their number
  const double* weights;   ///< kernel row of the fraction
};

/// Only for positions that fit.
inline TAP_POSITION LocateTaps(double position, const FOOTPRINT& footprint,
                               const INTERPOLATION_KERNEL& kernel) {
  const auto pixel = static_cast<std::int64_t>(position);
  const double fraction = position - static_cast<double>(pixel);
  // Not std::lround: the sum decides what the largest fractions are rounded to.
  const int step = static_cast<int>(fraction * kernel.SubpixCount() + 0.5);  // NOLINT
  // A fraction within half a step of 1 takes the weights of fraction 0 while its taps stay where
  // they are. That is the program's definition of the result.
  const int row = step == kernel.SubpixCount() ? 0 : step;
  // A kernel without taps has no weights, and then also computes positions left of pixel 0.
  const double* weights = footprint.Length() > 0 ? kernel.Row(row) : nullptr;
  return {pixel - footprint.Offset(), pixel, fraction, step, weights};
}
