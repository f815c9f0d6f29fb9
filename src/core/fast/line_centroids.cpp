#include "core/fast/line_centroids.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace {

constexpr std::size_t table_bytes = std::size_t{2} << 20;

/// Lines kept: all of them when the table allows it.
std::size_t EntryCount(int slave_height, std::size_t entry_size) {
  const std::size_t wanted = std::bit_ceil(static_cast<std::size_t>(std::max(slave_height, 1)));
  const std::size_t possible = std::bit_floor(table_bytes / (entry_size * sizeof(double)) + 1);
  return std::min(wanted, possible);
}

/// Likewise for the rate: the polynomials that are subtracted may be this large, as phases at the
/// ends of the kernel in turns.
constexpr double largest_rate_phase = 256.0;

/// Replaces the coefficients of p(x) by those of p(x + distance) as a polynomial in x.
void Shift(double* coefficients, int count, double distance) {
  for (int first = 0; first < count - 1; ++first) {
    for (int k = count - 2; k >= first; --k) {
      coefficients[k] += coefficients[k + 1] * distance;
    }
  }
}

}  // namespace

LINE_CENTROIDS::LINE_CENTROIDS(const DOPPLER_SAMPLER& doppler, int slave_width, int slave_height,
                               int kernel_length)
    : doppler_(doppler),
      coefficient_count_(doppler.Model().CoefficientCount()),
      kernel_length_(kernel_length),
      first_range_time_(doppler.RangeTime(0)),
      last_range_time_(doppler.RangeTime(slave_width)),
      slope_scale_(1.0 / doppler.Model().Prf()),
      entry_size_(1 + (doppler.WithRate() ? 2 : 1) * static_cast<std::size_t>(coefficient_count_)) {
  const std::size_t count = EntryCount(slave_height, entry_size_);
  entry_mask_ = count - 1;
  lines_.assign(count, -1);
  entries_.resize(count * entry_size_);
  neighbour_.resize(static_cast<std::size_t>(coefficient_count_));
}

void LINE_CENTROIDS::Compute(std::int64_t line, double* entry) {
  const double azimuth_time = doppler_.AzimuthTime(line);
  entry[0] = doppler_.Model().PolynomialAt(azimuth_time, entry + 1);
  if (doppler_.WithRate()) {
    ComputeRate(azimuth_time, entry);
  }
}

void LINE_CENTROIDS::ComputeRate(double azimuth_time, double* entry) {
  const DOPPLER_CENTROID_MODEL& model = doppler_.Model();
  const double scale = 1.0 / (4.0 * doppler_.RateStep() * model.Prf() * model.Prf());
  double* rate = entry + 1 + coefficient_count_;
  std::fill_n(rate, coefficient_count_, 0.0);
  bool is_accurate = true;
  for (const double sign : {1.0, -1.0}) {
    const double reference_time =
        model.PolynomialAt(azimuth_time + sign * doppler_.RateStep(), neighbour_.data());
    Shift(neighbour_.data(), coefficient_count_, entry[0] - reference_time);
    const double phase =
        Magnitude(neighbour_.data(), entry[0]) * scale * kernel_length_ * kernel_length_;
    is_accurate = is_accurate && phase <= largest_rate_phase;
    for (int k = 0; k < coefficient_count_; ++k) {
      rate[k] += sign * scale * neighbour_[static_cast<std::size_t>(k)];
    }
  }
  if (!is_accurate) {
    std::fill_n(rate, coefficient_count_, std::numeric_limits<double>::quiet_NaN());
  }
}

/// A bound of the polynomial's value, and of every partial sum, over the samples of the slave.
double LINE_CENTROIDS::Magnitude(const double* coefficients, double reference_time) const {
  const double distance = std::max(std::abs(first_range_time_ - reference_time),
                                   std::abs(last_range_time_ - reference_time));
  double sum = 0.0;
  for (int k = coefficient_count_ - 1; k >= 0; --k) {
    sum = sum * distance + std::abs(coefficients[k]);
  }
  return sum;
}
