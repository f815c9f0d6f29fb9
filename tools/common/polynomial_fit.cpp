#include "common/polynomial_fit.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

constexpr int n_terms = 6;
using TERMS = Eigen::Matrix<double, n_terms, 1>;

/// Positions as numbers of -1 to 1, which keep the equations well conditioned.
struct SCALED_AXIS {
  double centre = 0.0;
  double half_length = 1.0;

  double operator()(double position) const noexcept { return (position - centre) / half_length; }
};

template <class POSITION>
SCALED_AXIS AxisOf(std::span<const FIELD_POINT> points, POSITION position) {
  const auto [least, most] = std::minmax_element(
      points.begin(), points.end(),
      [&](const FIELD_POINT& a, const FIELD_POINT& b) { return position(a) < position(b); });
  const double length = position(*most) - position(*least);
  return {position(*least) + 0.5 * length, std::max(0.5 * length, 1.0)};
}

/// The points of a fit, the polynomial in scaled positions and each point's residual from it.
class FIT {
 public:
  explicit FIT(std::span<const FIELD_POINT> points)
      : points_(points),
        x_(AxisOf(points, [](const FIELD_POINT& point) { return point.x; })),
        y_(AxisOf(points, [](const FIELD_POINT& point) { return point.y; })),
        residuals_(points.size(), 0.0) {}

  /// Fits the points whose absolute residual from the last fit is at most `limit`; tells how many
  /// these are.
  std::int64_t FitWithin(double limit) {
    Eigen::Matrix<double, n_terms, n_terms> products = products.Zero();
    TERMS values = values.Zero();
    std::int64_t count = 0;
    for (std::size_t i = 0; i < points_.size(); ++i) {
      if (std::abs(residuals_[i]) <= limit) {
        const TERMS terms = TermsAt(points_[i]);
        products += terms * terms.transpose();
        values += terms * points_[i].value;
        ++count;
      }
    }
    constexpr double negligible = 1e-10;
    Eigen::ColPivHouseholderQR<decltype(products)> equations(products);
    equations.setThreshold(negligible);
    if (count < n_terms || equations.rank() < n_terms) {
      throw std::runtime_error("the offsets are too few, or too close together, for a polynomial");
    }
    coefficients_ = equations.solve(values);
    for (std::size_t i = 0; i < points_.size(); ++i) {
      residuals_[i] = points_[i].value - coefficients_.dot(TermsAt(points_[i]));
    }
    return count;
  }

  double MedianResidual() const {
    std::vector<double> sizes(residuals_.size());
    std::transform(residuals_.begin(), residuals_.end(), sizes.begin(),
                   [](double residual) { return std::abs(residual); });
    const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2);
    std::nth_element(sizes.begin(), middle, sizes.end());
    return *middle;
  }

  /// What is known when `limit` was the last to fit within.
  POLYNOMIAL_FIT Result(double limit) const {
    POLYNOMIAL_FIT result;
    result.coefficients = Coefficients();
    double squares = 0.0;
    for (const double residual : residuals_) {
      if (std::abs(residual) <= limit) {
        ++result.points;
        squares += residual * residual;
        result.residual_max = std::max(result.residual_max, std::abs(residual));
      }
    }
    result.residual_rms = std::sqrt(squares / static_cast<double>(result.points));
    result.rejected = static_cast<std::int64_t>(points_.size()) - result.points;
    result.points += result.rejected;
    return result;
  }

 private:
  TERMS TermsAt(const FIELD_POINT& point) const {
    const double x = x_(point.x);
    const double y = y_(point.y);
    return {1.0, y, x, x * y, y * y, x * x};
  }

  /// Those of the unscaled positions: (x - x0) / sx and (y - y0) / sy put into the terms.
  POLYNOMIAL Coefficients() const {
    const double x0 = x_.centre;
    const double y0 = y_.centre;
    const double constant = coefficients_[0];
    const double y = coefficients_[1] / y_.half_length;
    const double x = coefficients_[2] / x_.half_length;
    const double xy = coefficients_[3] / (x_.half_length * y_.half_length);
    const double yy = coefficients_[4] / (y_.half_length * y_.half_length);
    const double xx = coefficients_[5] / (x_.half_length * x_.half_length);
    return {constant - y * y0 - x * x0 + xy * x0 * y0 + yy * y0 * y0 + xx * x0 * x0,
            y - xy * x0 - 2.0 * yy * y0,
            x - xy * y0 - 2.0 * xx * x0,
            xy,
            yy,
            xx};
  }

  std::span<const FIELD_POINT> points_;
  SCALED_AXIS x_;
  SCALED_AXIS y_;
  std::vector<double> residuals_;
  TERMS coefficients_ = TERMS::Zero();
};

}  // namespace

double Evaluate(const POLYNOMIAL& coefficients, double x, double y) noexcept {
  const auto& c = coefficients;
  return c[0] + c[1] * y + c[2] * x + c[3] * x * y + c[4] * y * y + c[5] * x * x;
}

POLYNOMIAL_FIT FitPolynomial(std::span<const FIELD_POINT> points, double limit) {
  if (points.empty()) {
    throw std::runtime_error("there are no offsets");
  }
  constexpr int half_fits = 20;
  constexpr int most_rejections = 50;
  constexpr double never_rejected = 1e-3;
  constexpr double deviation_of_median = 1.4826;  // of normally distributed residuals

  FIT fit(points);
  fit.FitWithin(0.0);
  for (int i = 0; i < half_fits; ++i) {
    fit.FitWithin(std::max(fit.MedianResidual(), never_rejected));
  }
  double within = 0.0;
  std::int64_t count = 0;
  for (int i = 0; i < most_rejections; ++i) {
    within = std::max(limit * deviation_of_median * fit.MedianResidual(), never_rejected);
    const std::int64_t last_count = std::exchange(count, fit.FitWithin(within));
    if (count == last_count) {
      break;
    }
  }
  return fit.Result(within);
}
