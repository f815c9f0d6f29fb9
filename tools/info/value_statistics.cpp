#include "info/value_statistics.h"

#include <cmath>

void VALUE_STATISTICS::Add(double value) noexcept {
  ++count_;
  min_ = std::fmin(min_, value);
  max_ = std::fmax(max_, value);
  sum_ += value;
  sum_of_squares_ += value * value;
}

double VALUE_STATISTICS::Rms() const noexcept {
  return std::sqrt(sum_of_squares_ / static_cast<double>(count_));
}
