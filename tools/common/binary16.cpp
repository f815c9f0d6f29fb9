#include "common/binary16.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int mantissa_bits = 10;
constexpr int exponent_bias = 15;
constexpr double largest = 65504.0;
const double smallest_normal = std::ldexp(1.0, 1 - exponent_bias);

}  // namespace

std::uint16_t DoubleToBinary16(double value) noexcept {
  if (std::isnan(value)) {
    return 0x7FFF;
  }
  const double magnitude = std::min(std::abs(value), largest);
  int exponent = 0;
  std::frexp(magnitude, &exponent);  // magnitude = [0.5, 1) * 2^exponent
  const double step = std::ldexp(1.0, exponent - 1 - mantissa_bits);
  const double rounded = std::nearbyint(magnitude / step) * step;
  if (rounded < smallest_normal) {
    return 0;
  }
  std::frexp(rounded, &exponent);
  const int biased_exponent = exponent - 1 + exponent_bias;
  const int mantissa = static_cast<int>(std::ldexp(rounded, mantissa_bits + 1 - exponent)) & 0x3FF;
  const int sign = std::signbit(value) ? 0x8000 : 0;
  return static_cast<std::uint16_t>(sign | biased_exponent << mantissa_bits | mantissa);
}
