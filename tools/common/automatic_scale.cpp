#include "common/automatic_scale.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <limits>
#include <type_traits>

#include "common/stored_number.h"

namespace {

/// What the percentile is brought to at most; 0 for types that hold any number.
double TargetOf(PIXEL_TYPE type) {
  return VisitStoredNumber(type, []<class STORED>(STORED) {
    if constexpr (std::integral<STORED>) {
      return std::exp2(std::numeric_limits<STORED>::digits - 2);
    }
    return std::is_same_v<STORED, BINARY_16> ? 0x1p10 : 0.0;
  });
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
