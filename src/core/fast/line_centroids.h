#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/doppler_phase.h"
#include "core/fast/row_functions.h"

/// The Doppler centroid of one slave line along range.
struct LINE_CENTROID {
  RANGE_POLYNOMIAL slope;  ///< fdc / PRF [turns a line]
  RANGE_POLYNOMIAL rate;   ///< half its change from line to line; only with a rate term
};

/// Value of a polynomial at one range time, as the row function computes it.
inline double ValueAt(const RANGE_POLYNOMIAL& polynomial, double range_time) {
  const double dt = range_time - polynomial.reference_time;
  double sum = polynomial.coefficients[polynomial.count - 1];
  for (int k = polynomial.count - 2; k >= 0; --k) {
    sum = sum * dt + polynomial.coefficients[k];
  }
  sum *= polynomial.scale;
  return std::abs(sum) <= polynomial.limit ? sum : std::numeric_limits<double>::quiet_NaN();
}

/// Largest phase of a centroid over the length of the kernel, |fdc| / PRF * L in turns, for which
/// the sums keep their accuracy: the rounding of larger ones shows, in the plain core too.
inline constexpr double largest_phase = 512.0;

/// Centroids by slave line, worked out when first asked for and kept in a table of bounded size.
///
/// The slope's polynomial is evaluated exactly as the centroid model does it. The rate's stands for
///
///     (fdc(t + d) - fdc(t - d)) / (4 d PRF^2),
///
/// with d the time of a hundred lines; both polynomials are expanded around the reference time of
/// the line itself and subtracted. Where a phase would be so large that its rounding shows, slope
/// or rate are NaN: such pixels are left to the plain core.
class LINE_CENTROIDS {
 public:
  LINE_CENTROIDS(const DOPPLER_SAMPLER& doppler, int slave_width, int slave_height,
                 int kernel_length);

  /// Valid until the next call.
  LINE_CENTROID At(std::int64_t line) {
    const std::size_t index = static_cast<std::size_t>(line) & entry_mask_;
    double* entry = entries_.data() + index * entry_size_;
    if (lines_[index] != line) {
      Compute(line, entry);
      lines_[index] = line;
    }
    return {{entry[0], entry + 1, coefficient_count_, slope_scale_, largest_phase / kernel_length_},
            {entry[0], entry + 1 + coefficient_count_, coefficient_count_, 1.0, no_limit}};
  }

 private:
  static constexpr double no_limit = std::numeric_limits<double>::infinity();

  void Compute(std::int64_t line, double* entry);
  void ComputeRate(double azimuth_time, double* entry);
  double Magnitude(const double* coefficients, double reference_time) const;

  const DOPPLER_SAMPLER& doppler_;
  const int coefficient_count_;
  const int kernel_length_;
  const double first_range_time_;
  const double last_range_time_;
  const double slope_scale_;
  const std::size_t entry_size_;  ///< doubles: reference time, slope, rate
  std::size_t entry_mask_;
  std::vector<std::int64_t> lines_;  ///< that the entries are for
  std::vector<double> entries_;
  std::vector<double> neighbour_;  ///< coefficients of another azimuth time
};
