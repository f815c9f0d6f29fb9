#include "common/automatic_scale.h"

#include <algorithm>
#include <cmath>

namespace {

/// What the percentile is brought to at most; 0 for types that hold any number.
double TargetOf(PIXEL_TYPE type) {
  switch (type) {
    case PIXEL_TYPE::U_INT_8:
    case PIXEL_TYPE::C_U_INT_8:
      return 0x1p6;
    case PIXEL_TYPE::INT_16:
    case PIXEL_TYPE::C_INT_16:
      return 0x1p13;
    case PIXEL_TYPE::INT_32:
      return 0x1p29;
    case PIXEL_TYPE::FLT_2:
    case PIXEL_TYPE::C_FLT_2:
      return 0x1p10;
    default:
      return 0.0;
  }
}

}  // namespace

double AutomaticScale(PIXEL_TYPE type, std::vector<double>& numbers) {
  const double target = TargetOf(type);
  std::erase_if(numbers, [](double number) { return number == 0.0 || !std::isfinite(number); });
  if (target == 0.0 || numbers.empty()) {
    return 1.0;
  }
  const double rank = std::ceil(0.999 * static_cast<double>(numbers.size() - 1));
  const auto percentile = numbers.begin() + static_cast<std::ptrdiff_t>(rank);
  std::nth_element(numbers.begin(), percentile, numbers.end(),
                   [](double a, double b) { return std::abs(a) < std::abs(b); });
  return std::exp2(std::floor(std::log2(target / std::abs(*percentile))));
}
