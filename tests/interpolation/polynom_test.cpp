#include "interpolation/polynom.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/log_capture.h"
#include "support_points.h"

namespace {

/// A polynomial in powers of x with its derivatives.
struct POWERS {
  std::vector<double> factors;

  double operator()(double x) const { return Derivative(x, 0); }

  double Derivative(double x, int order) const {
    double sum = 0.0;
    for (int n = static_cast<int>(factors.size()) - 1; n >= order; --n) {
      double factor = factors[static_cast<std::size_t>(n)];
      for (int m = 0; m < order; ++m) {
        factor *= n - m;
      }
      sum = sum * x + factor;
    }
    return sum;
  }
};

const std::vector<double> abscissae = {-1.5, -0.25, 1.0, 1.75, 3.0, 4.5};

TEST(PolynomTest, ReproducesPolynomialsOfItsDegreeWithTheirSlopes) {
  const std::vector<double> factors = {1.5, -2.0, 0.75, 0.5, -0.125, 0.0625};
  for (std::size_t count = 1; count <= factors.size(); ++count) {
    const auto end = static_cast<std::ptrdiff_t>(count);
    const POWERS powers{{factors.begin(), factors.begin() + end}};
    const SUPPORT_POINTS points({abscissae.begin(), abscissae.begin() + end}, powers);
    POLYNOM<double> polynom;
    polynom.Init(points.Array());
    EXPECT_EQ(polynom.Degree(), static_cast<int>(count) - 1);
    for (const double x : {-3.0, -0.25, 0.5, 2.0, 7.0}) {
      EXPECT_NEAR(polynom.GetY(x), powers(x), 1e-10) << count << " points at " << x;
      EXPECT_NEAR(polynom.GetDerivedY(x), powers.Derivative(x, 1), 1e-10) << count;
      if (count <= 4) {
        EXPECT_NEAR(polynom.GetDerived2Y(x), powers.Derivative(x, 2), 1e-10) << count;
      }
    }
  }
}

TEST(PolynomTest, TheSecondDerivativeOfFivePointsKeepsItsOwnFormula) {
  // x^4 at 0 ... 4 has the divided differences 0, 1, 7, 6, 1, and the recurrence with the abscissae
  // of the order multiplies out to 12 x^2 + 12 x - 8 in place of 12 x^2.
  const SUPPORT_POINTS points({0.0, 1.0, 2.0, 3.0, 4.0}, POWERS{{0.0, 0.0, 0.0, 0.0, 1.0}});
  POLYNOM<double> polynom;
  polynom.Init(points.Array());
  EXPECT_EQ(polynom.GetDerived2Y(2.0), 64.0);
  EXPECT_EQ(polynom.GetDerived2Y(-1.5), 1.0);
}

TEST(PolynomTest, CoefficientsAreTheDividedDifferences) {
  const SUPPORT_POINTS points({0.0, 1.0, 3.0}, POWERS{{1.0, 0.0, 2.0}});
  POLYNOM<double> polynom;
  polynom.Init(points.Array());
  const double* c = polynom.GetCoeffs(99.0);
  EXPECT_EQ(c[0], 1.0);
  EXPECT_EQ(c[1], 2.0);
  EXPECT_EQ(c[2], 2.0);
}

TEST(PolynomTest, ASinglePointIsAConstant) {
  const SUPPORT_POINTS points({2.0}, POWERS{{-4.0}});
  POLYNOM<double> polynom;
  polynom.InitSupport(points.Array());
  EXPECT_EQ(polynom.GetY(1e6), -4.0);
  EXPECT_EQ(polynom.GetDerivedY(1e6), 0.0);
  EXPECT_EQ(polynom.GetDerived2Y(1e6), 0.0);
}

TEST(PolynomTest, CanBeSetUpAgain) {
  const SUPPORT_POINTS many(abscissae, POWERS{{1.0, 1.0, 1.0}});
  const SUPPORT_POINTS few({0.0, 1.0}, POWERS{{5.0, 3.0}});
  POLYNOM<double> polynom;
  polynom.Init(many.Array());
  polynom.Init(few.Array());
  EXPECT_EQ(polynom.Degree(), 1);
  EXPECT_EQ(polynom.GetY(4.0), 17.0);
}

TEST(PolynomTest, NothingIsEvaluatedWithoutPoints) {
  const LOG_CAPTURE log;
  POLYNOM<double> polynom;
  EXPECT_THROW(polynom.GetY(0.0), ERROR_ALGORITHM);
  EXPECT_THROW(polynom.GetDerived2Y(0.0), ERROR_ALGORITHM);
  EXPECT_THROW(polynom.GetCoeffs(0.0), ERROR_ALGORITHM);
  ARRAY<POINT<double>> none;
  EXPECT_THROW(polynom.Init(none), ERROR_ALGORITHM);
  EXPECT_TRUE(log.Has("ALARM : POLYNOM: no support points")) << log.Text();
}

TEST(InterpolationTest, TheBaseRefusesToEvaluate) {
  class ABSTRACT : public INTERPOLATION<double, POINT<double>> {};
  const LOG_CAPTURE log;
  ABSTRACT interpolation;
  const SUPPORT_POINTS points({0.0, 1.0}, POWERS{{1.0}});
  interpolation.Init(points.Array());
  EXPECT_THROW(interpolation.GetY(0.5), ERROR_ALGORITHM);
  EXPECT_THROW(interpolation.GetDerivedY(0.5), ERROR_ALGORITHM);
  EXPECT_THROW(interpolation.GetDerived2Y(0.5), ERROR_ALGORITHM);
  EXPECT_THROW(interpolation.GetCoeffs(0.5), ERROR_ALGORITHM);
  const std::vector<std::string> expected = {
      "ALARM : INTERPOLATION::GetY() shell not be called",
      "ALARM : INTERPOLATION::GetDerivedY() shell not be called",
      "ALARM : INTERPOLATION::GetDerived2Y() shell not be called",
      "ALARM : INTERPOLATION::GetCoeffs() shall not be called"};
  EXPECT_EQ(log.Lines(), expected);
}

}  // namespace
