#pragma once

#include <array>

#include "scene/scene_options.h"

/// Where a master pixel lies in the slave: its own position plus shifts that are polynomials of
/// second order.
class SCENE_WARP {
 public:
  /// Coefficients of 1, line, sample, sample * line, line^2, sample^2.
  using COEFFICIENTS = std::array<double, 6>;

  explicit SCENE_WARP(const SCENE_OPTIONS& options);

  const COEFFICIENTS& Range() const noexcept { return range_; }
  const COEFFICIENTS& Azimuth() const noexcept { return azimuth_; }

  double RangeShift(double sample, double line) const noexcept {
    return Evaluate(range_, sample, line);
  }
  double AzimuthShift(double sample, double line) const noexcept {
    return Evaluate(azimuth_, sample, line);
  }

 private:
  static double Evaluate(const COEFFICIENTS& c, double sample, double line) noexcept {
    return c[0] + c[1] * line + c[2] * sample + c[3] * sample * line + c[4] * line * line +
           c[5] * sample * sample;
  }

  COEFFICIENTS range_;
  COEFFICIENTS azimuth_;
};
