#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

/// Extremes and moments of finite values.
class VALUE_STATISTICS {
 public:
  void Add(double value) noexcept {
    ++count_;
    min_ = value < min_ ? value : min_;
    max_ = value > max_ ? value : max_;
    sum_ += value;
    sum_of_squares_ += value * value;
  }

  /// To be asked for with at least one value.
  double Min() const noexcept { return min_; }
  double Max() const noexcept { return max_; }
  double Mean() const noexcept { return sum_ / static_cast<double>(count_); }
  double Rms() const noexcept { return std::sqrt(sum_of_squares_ / static_cast<double>(count_)); }

 private:
  std::int64_t count_ = 0;
  double min_ = std::numeric_limits<double>::infinity();
  double max_ = -std::numeric_limits<double>::infinity();
  double sum_ = 0.0;
  double sum_of_squares_ = 0.0;
};
