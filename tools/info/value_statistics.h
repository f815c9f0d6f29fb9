#pragma once

#include <cstdint>
#include <limits>

/// Extremes and moments of finite values.
class VALUE_STATISTICS {
 public:
  void Add(double value) noexcept;

  /// All are NaN without values.
  double Min() const noexcept { return min_; }
  double Max() const noexcept { return max_; }
  double Mean() const noexcept { return sum_ / static_cast<double>(count_); }
  double Rms() const noexcept;

 private:
  std::int64_t count_ = 0;
  double min_ = std::numeric_limits<double>::quiet_NaN();
  double max_ = std::numeric_limits<double>::quiet_NaN();
  double sum_ = 0.0;
  double sum_of_squares_ = 0.0;
};
