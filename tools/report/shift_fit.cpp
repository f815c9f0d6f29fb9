#include "report/shift_fit.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "common/polynomial_fit.h"
#include "offsets/raster_offsets.h"

namespace {

constexpr int looks = 64;  ///< along each axis

struct DEPARTURE_SUM {
  DEPARTURE found;
  double squares = 0.0;

  /// Differences that are no number are left out.
  void Include(double difference) {
    if (!std::isnan(difference)) {
      ++found.points;
      squares += difference * difference;
      found.largest = std::max(found.largest, std::abs(difference));
    }
  }
  DEPARTURE Result() const {
    DEPARTURE result = found;
    result.rms = std::sqrt(squares / static_cast<double>(found.points));
    return result;
  }
};

DEPARTURE FromPolynomial(const std::vector<FIELD_POINT>& points) {
  constexpr double none_is_rejected = 1e9;
  const POLYNOMIAL fit = FitPolynomial(points, none_is_rejected).coefficients;
  DEPARTURE_SUM sum;
  for (const FIELD_POINT& point : points) {
    sum.Include(point.value - Evaluate(fit, point.x, point.y));
  }
  return sum.Result();
}

}  // namespace

RANGE_AZIMUTH<DEPARTURE> DepartureFromPolynomials(const RESAMPLE_INPUT& input) {
  std::vector<FIELD_POINT> range;
  std::vector<FIELD_POINT> azimuth;
  for (int i = 0; i < looks; ++i) {
    for (int j = 0; j < looks; ++j) {
      const double x = (j + 0.5) * input.n_samples / looks;
      const double y = (i + 0.5) * input.n_lines / looks;
      const double range_shift = input.mapping->GetSlaveRange(x, y) - x;
      const double azimuth_shift = input.mapping->GetSlaveAzimuth(x, y) - y;
      if (std::isfinite(range_shift) && std::isfinite(azimuth_shift)) {
        range.push_back({x, y, range_shift});
        azimuth.push_back({x, y, azimuth_shift});
      }
    }
  }
  return {FromPolynomial(range), FromPolynomial(azimuth)};
}

RANGE_AZIMUTH<DEPARTURE> DepartureFromMapping(const std::string& prefix,
                                              const MAPPING_BASE& mapping) {
  RASTER_OFFSETS_OPTIONS options;
  options.range = prefix + "_range.ras";
  options.azimuth = prefix + "_azimuth.ras";
  const RASTER_OFFSETS measured(options);
  DEPARTURE_SUM range;
  DEPARTURE_SUM azimuth;
  for (int row = 0; row < measured.Rows(); ++row) {
    for (const OFFSET& offset : measured.Row(row)) {
      const double x = offset.x;
      const double y = offset.y;
      if (offset.snr >= measured.LeastSnr() && x >= 0.0 && x <= mapping.GetMaxRange() && y >= 0.0 &&
          y <= mapping.GetMaxAzimuth()) {
        range.Include(x + offset.range - mapping.GetSlaveRange(x, y));
        azimuth.Include(y + offset.azimuth - mapping.GetSlaveAzimuth(x, y));
      }
    }
  }
  return {range.Result(), azimuth.Result()};
}
