#pragma once

#include <cstdint>
#include <vector>

/// Counts amplitudes of any size in classes that are 0.05 % wide at most, so that percentiles of
/// any number of pixels are found in one pass and in 4 MiB.
class AMPLITUDE_HISTOGRAM {
 public:
  AMPLITUDE_HISTOGRAM();

  /// For finite amplitudes.
  void Add(double amplitude) noexcept;

  /// The smallest amplitude that at least this share (0 to 1) of all amplitudes does not exceed,
  /// rounded down to the limit of its class. NaN without amplitudes.
  double Quantile(double share) const noexcept;
  /// How many amplitudes are less than this one; those of its class are not.
  std::int64_t CountBelow(double amplitude) const noexcept;
  std::int64_t Total() const noexcept { return total_; }

 private:
  std::vector<std::int64_t> counts_;
  std::int64_t total_ = 0;
};
