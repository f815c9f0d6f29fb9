#include "product/centroid_fit.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Powers of the scaled range times: a row a time, a column a degree.
Eigen::MatrixXd Powers(std::span<const double> range_times, double centre, double half_length,
                       Eigen::Index degree) {
  Eigen::MatrixXd powers(std::ssize(range_times), degree + 1);
  for (Eigen::Index i = 0; i < powers.rows(); ++i) {
    const double u = (range_times[static_cast<std::size_t>(i)] - centre) / half_length;
    powers(i, 0) = 1.0;
    for (Eigen::Index k = 1; k <= degree; ++k) {
      powers(i, k) = powers(i, k - 1) * u;
    }
  }
  return powers;
}

Eigen::MatrixXd ColumnsOf(const CENTROID_TABLE& table) {
  Eigen::MatrixXd columns(std::ssize(table.range_times), std::ssize(table.azimuth_times));
  for (Eigen::Index row = 0; row < columns.cols(); ++row) {
    columns.col(row) = Eigen::Map<const Eigen::VectorXd>(
        table.values[static_cast<std::size_t>(row)].data(), columns.rows());
  }
  return columns;
}

}  // namespace

CENTROID_POLYNOMIALS FitCentroid(const CENTROID_TABLE& table, double tolerance) {
  constexpr Eigen::Index highest_degree = 15;
  const double length = table.range_times.back() - table.range_times.front();
  const double half_length = length > 0.0 ? 0.5 * length : 1.0;
  const double centre = table.range_times.front() + 0.5 * length;
  const Eigen::MatrixXd values = ColumnsOf(table);

  CENTROID_POLYNOMIALS best;
  best.azimuth_times = table.azimuth_times;
  best.reference_time = centre;
  best.departure = std::numeric_limits<double>::infinity();
  for (Eigen::Index degree = 0; degree <= std::min(highest_degree, values.rows() - 1); ++degree) {
    const Eigen::MatrixXd powers = Powers(table.range_times, centre, half_length, degree);
    const Eigen::MatrixXd fit = powers.colPivHouseholderQr().solve(values);
    const double departure = (powers * fit - values).cwiseAbs().maxCoeff();
    if (departure < best.departure) {
      best.departure = departure;
      best.coefficients.assign(table.azimuth_times.size(), {});
      for (std::size_t row = 0; row < table.azimuth_times.size(); ++row) {
        for (Eigen::Index k = 0; k <= degree; ++k) {
          best.coefficients[row].push_back(fit(k, static_cast<Eigen::Index>(row)) /
                                           std::pow(half_length, k));
        }
      }
    }
    if (departure <= tolerance) {
      break;
    }
  }
  return best;
}
