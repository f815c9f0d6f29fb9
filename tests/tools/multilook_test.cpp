#include "png/multilook.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <numeric>
#include <vector>

namespace {

using std::complex;

/// An image whose pixel at (sample, line) has the power 1 + sample + 10 * line.
void FillPowers(std::int64_t line, std::span<PAIR_SUMS> pixels) {
  for (std::size_t sample = 0; sample < pixels.size(); ++sample) {
    const double power = 1.0 + static_cast<double>(sample) + 10.0 * static_cast<double>(line);
    pixels[sample] = PAIR_SUMS::Of(std::sqrt(power), 1.0);
  }
}

PAIR_SUMS SumOf(const std::vector<complex<double>>& a, const std::vector<complex<double>>& b) {
  PAIR_SUMS sums;
  for (std::size_t i = 0; i < a.size(); ++i) {
    sums.Add(PAIR_SUMS::Of(a[i], b[i]));
  }
  return sums;
}

TEST(MultilookTest, SumsWholePixelsOfEachBox) {
  const GRID<PAIR_SUMS> grid = Multilook(FillPowers, 4, 2, 2, 1);

  EXPECT_NEAR(grid.At(0, 0).power_a, 1 + 2 + 11 + 12, 1e-12);
  EXPECT_NEAR(grid.At(1, 0).power_a, 3 + 4 + 13 + 14, 1e-12);
  EXPECT_DOUBLE_EQ(grid.At(1, 0).weight, 4.0);
}

TEST(MultilookTest, DividesPixelsOnTheBorderOfTwoBoxes) {
  const GRID<PAIR_SUMS> grid = Multilook(FillPowers, 3, 3, 2, 2);

  EXPECT_NEAR(grid.At(0, 0).power_a, (1 + 0.5 * 2) + 0.5 * (11 + 0.5 * 12), 1e-12);
  EXPECT_NEAR(grid.At(1, 1).power_a, 0.5 * (0.5 * 12 + 13) + (0.5 * 22 + 23), 1e-12);
  for (const PAIR_SUMS& cell : grid.Cells()) {
    EXPECT_NEAR(cell.weight, 2.25, 1e-12);
  }
}

TEST(MultilookTest, LosesNothingAndReadsEveryLineOnceInOrder) {
  for (const auto& [samples, lines, columns, rows] :
       {std::array{7, 5, 7, 5}, std::array{17, 11, 6, 1}, std::array{100, 64, 33, 63}}) {
    std::int64_t next_line = 0;
    const auto line_sums = [&next_line](std::int64_t line, std::span<PAIR_SUMS> pixels) {
      EXPECT_EQ(line, next_line++);
      FillPowers(line, pixels);
    };

    const GRID<PAIR_SUMS> grid = Multilook(line_sums, samples, lines, columns, rows);

    EXPECT_EQ(next_line, lines);
    PAIR_SUMS all;
    for (const PAIR_SUMS& cell : grid.Cells()) {
      all.Add(cell);
      EXPECT_NEAR(cell.weight, 1.0 * samples * lines / (columns * rows), 1e-9);
    }
    const double mean_power = 1.0 + (samples - 1) / 2.0 + 10.0 * (lines - 1) / 2.0;
    EXPECT_NEAR(all.power_a, mean_power * samples * lines, 1e-6);
  }
}

TEST(PairSumsTest, TellCoherenceAndPhaseOfKnownPairs) {
  const complex<double> i(0.0, 1.0);
  const PAIR_SUMS turned = SumOf({1.0, 2.0 * i, 3.0 + 4.0 * i}, {-2.0 * i, 4.0, 8.0 - 6.0 * i});
  EXPECT_NEAR(turned.Coherence(), 1.0, 1e-15);
  EXPECT_NEAR(std::arg(turned.cross), std::acos(0.0), 1e-15);

  EXPECT_DOUBLE_EQ(SumOf({1.0, 1.0}, {1.0, -1.0}).Coherence(), 0.0);
  EXPECT_DOUBLE_EQ(SumOf({3.0, 4.0}, {3.0, 4.0 * i}).Coherence(), std::hypot(9.0, 16.0) / 25.0);
  EXPECT_TRUE(std::isnan(SumOf({}, {}).Coherence()));
}

TEST(PairSumsTest, LeaveOutPixelsWithoutData) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();

  const PAIR_SUMS sums = SumOf({1.0, {nan, 1.0}, infinity, 2.0, 0.0, 2.0},
                               {1.0, 1.0, 1.0, {0.0, -infinity}, 1.0, 0.0});

  EXPECT_DOUBLE_EQ(sums.weight, 1.0);
  EXPECT_DOUBLE_EQ(sums.power_a, 1.0);
  EXPECT_EQ(sums.cross, 1.0);
}

}  // namespace
