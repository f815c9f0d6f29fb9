#include "info/amplitude_histogram.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

/// A class is what has exponent and the upper 11 bits of the mantissa of a binary32 in common:
/// those patterns rise with the value.
constexpr int dropped_bits = 12;

constexpr float largest = std::numeric_limits<float>::max();

std::uint32_t ClassOf(double amplitude) noexcept {
  const auto rounded = static_cast<float>(std::min(amplitude, double{largest}));
  return std::bit_cast<std::uint32_t>(rounded) >> dropped_bits;
}

}  // namespace

AMPLITUDE_HISTOGRAM::AMPLITUDE_HISTOGRAM() : counts_(std::size_t{ClassOf(largest)} + 1) {}

void AMPLITUDE_HISTOGRAM::Add(double amplitude) noexcept {
  ++counts_[ClassOf(amplitude)];
  ++total_;
}

double AMPLITUDE_HISTOGRAM::Quantile(double share) const noexcept {
  std::int64_t missing =
      std::max<std::int64_t>(1, std::llround(std::ceil(share * static_cast<double>(total_))));
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    missing -= counts_[i];
    if (missing <= 0) {
      return std::bit_cast<float>(static_cast<std::uint32_t>(i) << dropped_bits);
    }
  }
  return std::numeric_limits<double>::quiet_NaN();
}

std::int64_t AMPLITUDE_HISTOGRAM::CountBelow(double amplitude) const noexcept {
  return std::accumulate(counts_.begin(), counts_.begin() + ClassOf(amplitude), std::int64_t{0});
}
