#pragma once

#include <complex>
#include <limits>

#include "raster/pixel_type.h"

/// The ends of a pixel type's range, which hold what lay beyond; there are none where values do not
/// end.
class TYPE_ENDS {
 public:
  explicit TYPE_ENDS(PIXEL_TYPE type) noexcept;

  bool Exist() const noexcept { return high_ < std::numeric_limits<double>::infinity(); }
  /// How many of real and imaginary part stand at an end.
  int Saturated(std::complex<double> value) const noexcept {
    return Saturated(value.real()) + Saturated(value.imag());
  }

 private:
  int Saturated(double part) const noexcept { return part <= low_ || part >= high_ ? 1 : 0; }

  double low_ = -std::numeric_limits<double>::infinity();
  double high_ = std::numeric_limits<double>::infinity();
};
