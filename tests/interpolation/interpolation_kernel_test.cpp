#include "interpolation/interpolation_kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "base/error_exception.h"
#include "support/log_capture.h"

namespace {

using BASIC::TYPES::KernelType;

constexpr int cubic = KernelType::CUBIC_CONVOLUTION;
constexpr int sinc = KernelType::TRUNCATED_SINC_NO_WEIGHT;
constexpr int kaiser = KernelType::TRUNCATED_SINC_KAISER_WEIGHT;

class InterpolationKernelTest : public testing::Test {
 protected:
  void Init(int id, int length, int subpix_count, float coefficient = 0.0F) {
    kernel_.InitKernel(KernelType(id), length, subpix_count, coefficient);
  }

  std::vector<double> Weights(int row) const {
    return {kernel_.Row(row), kernel_.Row(row) + std::max(kernel_.Length(), 0)};
  }

  LOG_CAPTURE log_;
  INTERPOLATION_KERNEL kernel_;
};

TEST_F(InterpolationKernelTest, WeightsHaveTheirClosedForms) {
  using std::numbers::pi;
  const auto expect_row = [&](int row, const std::vector<double>& expected) {
    const std::vector<double> found = Weights(row);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
      EXPECT_NEAR(found[i], expected[i], 1e-9) << "row " << row << ", weight " << i;
    }
  };
  const std::vector<double> half_of_sinc = {0.4 / pi, -2 / pi / 3, 2 / pi,
                                            2 / pi,   -2 / pi / 3, 0.4 / pi};
  for (const int id : {cubic, sinc, kaiser}) {
    Init(id, 6, 2);
    expect_row(0, {0, 0, 1, 0, 0, 0});
    expect_row(1, id == cubic ? std::vector<double>{1.0 / 96, -3.0 / 32, 7.0 / 12, 7.0 / 12,
                                                    -3.0 / 32, 1.0 / 96}
                              : half_of_sinc);
  }
  // An odd length has its spare sample behind the target; the window is I0(pi sqrt(1 - 4 u^2)).
  Init(kaiser, 7, 4, 1.0F);
  std::vector<double> expected;
  for (double x = -2.25; x < 4.0; x += 1.0) {
    const double window = std::cyl_bessel_i(0.0, pi * std::sqrt(1.0 - 4.0 * x * x / 49.0));
    expected.push_back(std::sin(pi * x) / (pi * x) * window / std::cyl_bessel_i(0.0, pi));
  }
  expected.back() = 0.0;  // 3.75 lies outside the window
  expect_row(1, expected);
}

TEST_F(InterpolationKernelTest, WrongParametersAreResetWithAWarning) {
  Init(cubic, 8, 4);
  EXPECT_EQ(kernel_.Length(), 6);
  Init(sinc, -4, 4);
  EXPECT_EQ(kernel_.Length(), 6);
  const std::vector<double> unweighted = Weights(2);
  for (const float coefficient : {-0.5F, std::numeric_limits<float>::quiet_NaN()}) {
    Init(kaiser, 6, 4, coefficient);
    EXPECT_EQ(Weights(2), unweighted);
    EXPECT_EQ(kernel_.Coefficient(), 0.0F);
  }
  Init(kaiser, 4, 2, 2.0F);
  EXPECT_EQ(kernel_.Length(), 6);
  const std::string weight =
      "WARN  : Kaiser weight must be a non-negative number. Reset to zero (i.e. no weight)";
  const std::string outside = "WARN  : This should not execute actually ";
  const std::vector<std::string> expected = {
      "WARN  : Cubic convolution kernel by default with 6 points. Length is reset to 6",
      "WARN  : Truncated sinc must at least have 6 points. Length is reset to 6", weight, weight,
      "WARN  : Truncated sinc with kaiser weight must at least have 6 points. Length is reset to 6",
      // The window keeps the length that was asked for.
      outside + "0.750000", outside + "-0.625000", outside + "0.625000"};
  EXPECT_EQ(log_.Lines(), expected);
}

TEST_F(InterpolationKernelTest, TablesWithoutRowsOrBeyondAllMemoryAreRefused) {
  EXPECT_THROW(Init(sinc, 6, 0), ERROR_ARGUMENT);
  constexpr int most = std::numeric_limits<int>::max();
  EXPECT_THROW(Init(sinc, most, most), ERROR_NO_MEMORY);
  EXPECT_EQ(log_.Lines().back(),
            "ALARM : INTERPOLATION_KERNEL: no memory for 2147483647 rows of 2147483647 weights");
}

}  // namespace
