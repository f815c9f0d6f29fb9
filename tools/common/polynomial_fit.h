#pragma once

#include <array>
#include <cstdint>
#include <span>

/// A value at a master position: sample x, line y.
struct FIELD_POINT {
  double x = 0.0;
  double y = 0.0;
  double value = 0.0;
};

/// Coefficients of 1, y, x, x y, y^2, x^2, the order of a mapping polynomial.
using POLYNOMIAL = std::array<double, 6>;

double Evaluate(const POLYNOMIAL& coefficients, double x, double y) noexcept;

struct POLYNOMIAL_FIT {
  POLYNOMIAL coefficients{};
  std::int64_t points = 0;
  std::int64_t rejected = 0;
  double residual_rms = 0.0;  ///< of the points that were not rejected
  double residual_max = 0.0;
};

/// Least squares without the outliers. The fit begins with the better half of the points, found by
/// repeated fits to the half with the smallest residuals; then it rejects, as long as that changes
/// anything, the points whose residual exceeds `limit` standard deviations, which follow from the
/// median of all absolute residuals. So nearly half of the points may be outliers. A residual of
/// up to a thousandth is never rejected.
///
/// Throws std::runtime_error for points that do not determine the coefficients.
POLYNOMIAL_FIT FitPolynomial(std::span<const FIELD_POINT> points, double limit);
