#include "product/slc_product.h"

#include <algorithm>

double CENTROID_POLYNOMIALS::At(double azimuth_time, double range_time) const {
  const auto value = [&](std::size_t row) {
    double sum = 0.0;
    for (std::size_t k = coefficients[row].size(); k-- > 0;) {
      sum = sum * (range_time - reference_time) + coefficients[row][k];
    }
    return sum;
  };
  if (azimuth_times.size() == 1) {
    return value(0);
  }
  const auto later =
      std::upper_bound(azimuth_times.begin() + 1, azimuth_times.end() - 1, azimuth_time);
  const auto row = static_cast<std::size_t>(later - azimuth_times.begin());
  const double part =
      (azimuth_time - azimuth_times[row - 1]) / (azimuth_times[row] - azimuth_times[row - 1]);
  return (1.0 - part) * value(row - 1) + part * value(row);
}
