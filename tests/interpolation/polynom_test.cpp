#include "interpolation/polynom.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/log_capture.h"
#include "support_points.h"

namespace {

const std::vector<double> abscissae = {-1.5, -0.25, 1.0, 1.75, 3.0, 4.5};
const std::vector<double> factors = {1.5, -2.0, 0.75, 0.5, -0.125, 0.0625};

/// A derivative of the polynomial with the first `count` factors of the powers of x.
double Derivative(int order, int count, double x) {
  double sum = 0.0;
  for (int n = order; n < count; ++n) {
    sum += factors[static_cast<std::size_t>(n)] * std::pow(x, n - order) * std::tgamma(n + 1) /
           std::tgamma(n - order + 1);
  }
  return sum;
}

TEST(PolynomTest, ReproducesPolynomialsOfItsDegreeWithTheirDerivatives) {
  POLYNOM<double> polynom;
  for (int count = 6; count > 0; --count) {
    const SUPPORT_POINTS points({abscissae.begin(), abscissae.begin() + count},
                                [&](double x) { return Derivative(0, count, x); });
    polynom.Init(points.Array());
    EXPECT_EQ(polynom.Degree(), count - 1);
    for (const double x : {-3.0, -0.25, 0.5, 2.0, 7.0}) {
      EXPECT_NEAR(polynom.GetY(x), Derivative(0, count, x), 1e-10) << count << " points at " << x;
      EXPECT_NEAR(polynom.GetDerivedY(x), Derivative(1, count, x), 1e-10) << count;
      if (count <= 4) {
        EXPECT_NEAR(polynom.GetDerived2Y(x), Derivative(2, count, x), 1e-10) << count;
      }
    }
  }
}

TEST(PolynomTest, TheSecondDerivativeOfFivePointsKeepsItsOwnFormula) {
  // x^4 at 0 ... 4 has the divided differences 0, 1, 7, 6, 1, and the recurrence with the abscissae
  // of the order multiplies out to 12 x^2 + 12 x - 8 in place of 12 x^2.
  const SUPPORT_POINTS points({0.0, 1.0, 2.0, 3.0, 4.0}, [](double x) { return x * x * x * x; });
  POLYNOM<double> polynom;
  polynom.SetOption(1);  // has no effect, nor has the next one
  polynom.SetSupportPointCount(2);
  polynom.InitSupport(points.Array());
  const double* c = polynom.GetCoeffs(99.0);
  EXPECT_EQ(std::vector<double>(c, c + 5), (std::vector<double>{0.0, 1.0, 7.0, 6.0, 1.0}));
  EXPECT_EQ(polynom.GetDerived2Y(2.0), 64.0);
  EXPECT_EQ(polynom.GetDerived2Y(-1.5), 1.0);
}

TEST(PolynomTest, NothingIsEvaluatedWithoutPoints) {
  const LOG_CAPTURE log;
  POLYNOM<double> polynom;
  EXPECT_THROW(polynom.GetY(0.0), ERROR_ALGORITHM);
  EXPECT_EQ(log.Lines().back(), "ALARM : POLYNOM: evaluated before its set-up");
  ARRAY<POINT<double>> none;
  EXPECT_THROW(polynom.Init(none), ERROR_ALGORITHM);
  EXPECT_EQ(log.Lines().back(), "ALARM : POLYNOM: no support points");
}

}  // namespace
