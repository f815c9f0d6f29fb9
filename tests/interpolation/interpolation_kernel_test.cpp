#include "interpolation/interpolation_kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "base/error_exception.h"
#include "support/log_capture.h"

namespace {

using BASIC::TYPES::KernelType;

constexpr int cubic = KernelType::CUBIC_CONVOLUTION;
constexpr int sinc = KernelType::TRUNCATED_SINC_NO_WEIGHT;
constexpr int kaiser = KernelType::TRUNCATED_SINC_KAISER_WEIGHT;

/// Cubic convolution over 6 points by its defining pieces in twelfths.
long double Cubic(long double x) {
  const long double a = std::fabs(x);
  if (a <= 1) {
    return (16 * a * a * a - 28 * a * a + 12) / 12;
  }
  if (a <= 2) {
    return (-7 * a * a * a + 36 * a * a - 59 * a + 30) / 12;
  }
  return a <= 3 ? (a * a * a - 8 * a * a + 21 * a - 18) / 12 : 0;
}

long double Sinc(long double x) {
  const long double angle = std::numbers::pi_v<long double> * x;
  return x == 0 ? 1 : std::sin(angle) / angle;
}

/// The first twelve terms of the series of I0, by factorials.
long double TwelveTermsOfI0(long double z) {
  long double sum = 0;
  for (int m = 0; m < 12; ++m) {
    const long double term = std::pow(z / 2, m) / std::tgamma(m + 1.0L);
    sum += term * term;
  }
  return sum;
}

/// 0 outside the window.
long double KaiserSinc(long double x, long double window_length, long double coefficient) {
  const long double inside = 1 - std::pow(2 * x / window_length, 2);
  const long double b = coefficient * std::numbers::pi_v<long double>;
  return inside < 0 ? 0 : Sinc(x) * TwelveTermsOfI0(b * std::sqrt(inside)) / TwelveTermsOfI0(b);
}

class InterpolationKernelTest : public testing::Test {
 protected:
  void Init(int id, int length, int subpix_count, float coefficient = 0.0F) {
    kernel_.InitKernel(KernelType(id), length, subpix_count, coefficient);
  }

  /// Expects a table of that size whose weights follow the formula of the distance to the sample.
  template <class FORMULA>
  void ExpectWeights(int length, int subpix_count, FORMULA formula) const {
    ASSERT_EQ(kernel_.Length(), length);
    ASSERT_EQ(kernel_.SubpixCount(), subpix_count);
    for (int k = 0; k < subpix_count; ++k) {
      for (int i = 0; i < length; ++i) {
        const double distance = i - (length / 2 - 1) - k / static_cast<double>(subpix_count);
        EXPECT_NEAR(kernel_.Row(k)[i], static_cast<double>(formula(distance)), 2e-14)
            << "row " << k << " tap " << i << " of " << length;
      }
    }
  }

  LOG_CAPTURE log_;
  INTERPOLATION_KERNEL kernel_;
};

TEST_F(InterpolationKernelTest, ShapesFollowTheirFormulas) {
  for (const int subpix_count : {1, 100, 3, 16}) {
    Init(cubic, 6, subpix_count, 2.0F);
    ExpectWeights(6, subpix_count, Cubic);
    EXPECT_EQ(kernel_.Coefficient(), 0.0F);
  }
  for (const int length : {6, 40, 8}) {
    Init(sinc, length + 1, 16, 2.0F);
    ExpectWeights(length + 1, 16, Sinc);
    EXPECT_EQ(kernel_.Coefficient(), 0.0F);
    for (const float coefficient : {0.0F, 0.5F, 2.5F, 4.0F}) {
      Init(kaiser, length, 16, coefficient);
      ExpectWeights(length, 16, [&](double x) { return KaiserSinc(x, length, coefficient); });
      EXPECT_EQ(kernel_.Coefficient(), coefficient);
    }
  }
  EXPECT_EQ(log_.Text(), "") << "the tap at the very edge of the window is inside";
}

TEST_F(InterpolationKernelTest, WrongParametersAreResetWithAWarning) {
  Init(cubic, 8, 4);
  ExpectWeights(6, 4, Cubic);
  Init(sinc, -4, 4);
  ExpectWeights(6, 4, Sinc);
  for (const float coefficient : {-0.5F, std::numeric_limits<float>::quiet_NaN()}) {
    Init(kaiser, 6, 2, coefficient);
    ExpectWeights(6, 2, Sinc);
    EXPECT_EQ(kernel_.Coefficient(), 0.0F);
  }
  const std::string weight =
      "WARN  : Kaiser weight must be a non-negative number. Reset to zero (i.e. no weight)";
  const std::vector<std::string> expected = {
      "WARN  : Cubic convolution kernel by default with 6 points. Length is reset to 6",
      "WARN  : Truncated sinc must at least have 6 points. Length is reset to 6", weight, weight};
  EXPECT_EQ(log_.Lines(), expected);
}

TEST_F(InterpolationKernelTest, TheKaiserWindowKeepsTheRequestedLength) {
  Init(kaiser, 4, 2, 2.0F);
  ExpectWeights(6, 2, [](double x) { return KaiserSinc(x, 4.0L, 2.0L); });
  const std::string outside = "WARN  : This should not execute actually ";
  const std::vector<std::string> expected = {
      "WARN  : Truncated sinc with kaiser weight must at least have 6 points. Length is reset to 6",
      outside + "0.750000", outside + "-0.625000", outside + "0.625000"};
  EXPECT_EQ(log_.Lines(), expected);
  Init(kaiser, 7, 2, 2.0F);  // the last tap of an odd length lies 4 samples behind the target
  ExpectWeights(7, 2, [](double x) { return KaiserSinc(x, 7.0L, 2.0L); });
  EXPECT_EQ(log_.Lines().back(), outside + "0.571429");
}

TEST_F(InterpolationKernelTest, TypesWithoutKernelHaveRowsOfZeros) {
  for (const int id : {0, 4}) {
    Init(id, 5, 3, -1.0F);
    ExpectWeights(5, 3, [](double) { return 0.0; });
    EXPECT_EQ(kernel_.Coefficient(), -1.0F) << "nothing is corrected";
  }
  Init(0, -2, 3);
  EXPECT_EQ(kernel_.Length(), -2) << "a kernel without taps is legal";
}

TEST_F(InterpolationKernelTest, TablesWithoutRowsOrBeyondAllMemoryAreRefused) {
  EXPECT_THROW(Init(sinc, 6, 0), ERROR_ARGUMENT);
  constexpr int most = std::numeric_limits<int>::max();
  EXPECT_THROW(Init(sinc, most, most), ERROR_NO_MEMORY);
  EXPECT_EQ(log_.Lines().back(),
            "ALARM : INTERPOLATION_KERNEL: no memory for 2147483647 rows of 2147483647 weights");
}

}  // namespace
