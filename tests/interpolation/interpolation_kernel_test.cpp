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

long double KaiserSinc(long double x, long double window_length, long double coefficient) {
  const long double u = x / window_length;
  const long double b = coefficient * std::numbers::pi_v<long double>;
  return Sinc(x) * TwelveTermsOfI0(b * std::sqrt(1 - 4 * u * u)) / TwelveTermsOfI0(b);
}

class InterpolationKernelTest : public testing::Test {
 protected:
  void Init(int id, int length, int subpix_count, float coefficient = 0.0F) {
    kernel_.InitKernel(KernelType(id), length, subpix_count, coefficient);
  }

  /// Distance from the target of sub-pixel position k to the sample of tap i.
  double Distance(int k, int i) const {
    const int taps_before = kernel_.Length() / 2 - 1;
    return i - taps_before - k / static_cast<double>(kernel_.SubpixCount());
  }

  template <class FORMULA>
  void ExpectWeights(FORMULA formula) const {
    for (int k = 0; k < kernel_.SubpixCount(); ++k) {
      for (int i = 0; i < kernel_.Length(); ++i) {
        EXPECT_NEAR(kernel_.Row(k)[i], static_cast<double>(formula(Distance(k, i))), 2e-14)
            << "row " << k << " tap " << i << " of " << kernel_.Length();
      }
    }
  }

  long CountLines(const std::string& line) const {
    const std::vector<std::string> lines = log_.Lines();
    return std::count(lines.begin(), lines.end(), line);
  }

  LOG_CAPTURE log_;
  INTERPOLATION_KERNEL kernel_;
};

constexpr int cubic = KernelType::CUBIC_CONVOLUTION;
constexpr int sinc = KernelType::TRUNCATED_SINC_NO_WEIGHT;
constexpr int kaiser = KernelType::TRUNCATED_SINC_KAISER_WEIGHT;

TEST_F(InterpolationKernelTest, CubicConvolutionFollowsItsFormula) {
  for (const int subpix_count : {1, 3, 16, 100}) {
    Init(cubic, 6, subpix_count, 2.0F);
    ASSERT_EQ(kernel_.Length(), 6);
    ASSERT_EQ(kernel_.SubpixCount(), subpix_count);
    ExpectWeights(Cubic);
  }
  EXPECT_EQ(kernel_.Coefficient(), 0.0F);
  EXPECT_EQ(log_.Text(), "");
}

TEST_F(InterpolationKernelTest, TruncatedSincFollowsItsFormula) {
  for (const int length : {6, 7, 8, 13, 40}) {
    Init(sinc, length, 16, 2.0F);
    ASSERT_EQ(kernel_.Length(), length);
    ExpectWeights(Sinc);
  }
  EXPECT_EQ(kernel_.Coefficient(), 0.0F);
  EXPECT_EQ(log_.Text(), "");
}

TEST_F(InterpolationKernelTest, KaiserSincTakesTwelveTermsOfTheSeries) {
  for (const int length : {6, 8, 16}) {
    for (const float coefficient : {0.5F, 2.0F, 2.5F, 4.0F}) {
      Init(kaiser, length, 16, coefficient);
      ASSERT_EQ(kernel_.Coefficient(), coefficient);
      ExpectWeights([&](double x) { return KaiserSinc(x, length, coefficient); });
    }
  }
  EXPECT_EQ(log_.Text(), "") << "the tap at the very edge of the window is inside";
}

TEST_F(InterpolationKernelTest, KaiserSincWithoutWeightIsTheTruncatedSinc) {
  INTERPOLATION_KERNEL plain;
  plain.InitKernel(KernelType(sinc), 8, 32, 0.0F);
  Init(kaiser, 8, 32, 0.0F);
  for (int k = 0; k < 32; ++k) {
    EXPECT_TRUE(std::equal(plain.Row(k), plain.Row(k) + 8, kernel_.Row(k))) << k;
  }
}

TEST_F(InterpolationKernelTest, RowZeroPicksTheSampleItself) {
  for (const int id : {cubic, sinc, kaiser}) {
    Init(id, 6, 4, 2.5F);
    for (int i = 0; i < 6; ++i) {
      EXPECT_NEAR(kernel_.Row(0)[i], i == 2 ? 1.0 : 0.0, 1e-15) << id << ' ' << i;
    }
    EXPECT_EQ(kernel_.Row(0)[2], 1.0);
  }
}

TEST_F(InterpolationKernelTest, WrongLengthsAreResetWithAWarning) {
  for (const int length : {5, 8, 0, -3}) {
    Init(cubic, length, 4);
    EXPECT_EQ(kernel_.Length(), 6);
    ExpectWeights(Cubic);
  }
  Init(sinc, 4, 4);
  EXPECT_EQ(kernel_.Length(), 6);
  ExpectWeights(Sinc);
  std::vector<std::string> expected(
      4, "WARN  : Cubic convolution kernel by default with 6 points. Length is reset to 6");
  expected.emplace_back("WARN  : Truncated sinc must at least have 6 points. Length is reset to 6");
  EXPECT_EQ(log_.Lines(), expected);
}

TEST_F(InterpolationKernelTest, TheKaiserWindowKeepsTheRequestedLength) {
  Init(kaiser, 4, 4, 2.0F);
  ASSERT_EQ(kernel_.Length(), 6);
  long outside = 0;
  for (int k = 0; k < 4; ++k) {
    for (int i = 0; i < 6; ++i) {
      const double x = Distance(k, i);
      if (std::abs(x) > 2.0) {
        ++outside;
        EXPECT_EQ(kernel_.Row(k)[i], 0.0);
      } else {
        EXPECT_NEAR(kernel_.Row(k)[i], static_cast<double>(KaiserSinc(x, 4.0L, 2.0L)), 1e-14);
      }
    }
  }
  const std::vector<std::string> lines = log_.Lines();
  EXPECT_EQ(lines.front(),
            "WARN  : Truncated sinc with kaiser weight must at least have 6 points. Length is "
            "reset to 6");
  EXPECT_EQ(static_cast<long>(lines.size()), 1 + outside);
  EXPECT_EQ(CountLines("WARN  : This should not execute actually 0.750000"), 1);
  EXPECT_EQ(CountLines("WARN  : This should not execute actually -0.562500"), 1);
}

TEST_F(InterpolationKernelTest, TheLastTapOfOddKaiserKernelsFallsOutOfTheWindow) {
  Init(kaiser, 7, 4, 2.0F);
  ASSERT_EQ(kernel_.Length(), 7);
  EXPECT_EQ(kernel_.Row(0)[6], 0.0);
  EXPECT_EQ(kernel_.Row(1)[6], 0.0);
  EXPECT_NE(kernel_.Row(3)[6], 0.0) << "3.25 samples away, the window ends at 3.5";
  EXPECT_EQ(log_.Lines().size(), 2U) << log_.Text();
}

TEST_F(InterpolationKernelTest, NegativeKaiserWeightsAreReset) {
  for (const float coefficient : {-0.5F, std::numeric_limits<float>::quiet_NaN()}) {
    Init(kaiser, 6, 2, coefficient);
    EXPECT_EQ(kernel_.Coefficient(), 0.0F);
    ExpectWeights(Sinc);
  }
  EXPECT_EQ(CountLines("WARN  : Kaiser weight must be a non-negative number. Reset to zero (i.e. "
                       "no weight)"),
            2);
}

TEST_F(InterpolationKernelTest, TypesWithoutKernelHaveRowsOfZeros) {
  for (const int id : {0, 4}) {
    Init(id, 5, 3, -1.0F);
    ASSERT_EQ(kernel_.Length(), 5);
    EXPECT_EQ(kernel_.Coefficient(), -1.0F) << "nothing is corrected";
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(std::count(kernel_.Row(k), kernel_.Row(k) + 5, 0.0), 5);
    }
  }
  Init(0, -2, 3);
  EXPECT_EQ(kernel_.Length(), -2) << "a kernel without taps is legal";
  EXPECT_EQ(log_.Text(), "");
}

TEST_F(InterpolationKernelTest, LessThanOneSubPixelPositionIsRefused) {
  EXPECT_THROW(Init(sinc, 6, 0), ERROR_ARGUMENT);
  EXPECT_THROW(Init(cubic, 6, -1), ERROR_ARGUMENT);
  EXPECT_EQ(log_.Lines().back(),
            "ALARM : INTERPOLATION_KERNEL: the number of sub-pixel positions must be at least 1, "
            "not -1");
}

TEST_F(InterpolationKernelTest, ATableBeyondAllMemoryIsRefused) {
  constexpr int most = std::numeric_limits<int>::max();
  EXPECT_THROW(Init(sinc, most, most), ERROR_NO_MEMORY);
  EXPECT_EQ(log_.Lines().back().substr(0, 40), "ALARM : INTERPOLATION_KERNEL: no memory ");
}

TEST_F(InterpolationKernelTest, CanBeSetUpAgainSmallerAndLarger) {
  for (const auto& [length, subpix_count] : {std::pair{8, 16}, {6, 4}, {12, 20}, {12, 2}}) {
    Init(sinc, length, subpix_count);
    ASSERT_EQ(kernel_.Length(), length);
    ASSERT_EQ(kernel_.SubpixCount(), subpix_count);
    ExpectWeights(Sinc);
  }
  Init(cubic, 6, 2);
  EXPECT_EQ(kernel_.Type().Id(), cubic);
  ExpectWeights(Cubic);
}

}  // namespace
