#include "png/multilook.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// An image whose pixel at (sample, line) has the power 1 + sample + 10 * line.
void FillPowers(std::int64_t line, std::span<PAIR_SUMS> pixels) {
  for (std::size_t sample = 0; sample < pixels.size(); ++sample) {
    const double power = 1.0 + static_cast<double>(sample) + 10.0 * static_cast<double>(line);
    pixels[sample] = PAIR_SUMS::Of(std::sqrt(power), 1.0);
  }
}

TEST(MultilookTest, DividesPixelsOnTheBorderOfTwoBoxes) {
  const GRID<PAIR_SUMS> grid = Multilook(FillPowers, 3, 3, 2, 2);

  EXPECT_NEAR(grid.At(0, 0).power_a, (1 + 0.5 * 2) + 0.5 * (11 + 0.5 * 12), 1e-12);
  EXPECT_NEAR(grid.At(1, 1).power_a, 0.5 * (0.5 * 12 + 13) + (0.5 * 22 + 23), 1e-12);
}

TEST(MultilookTest, LosesNothingAndReadsEveryLineOnceInOrder) {
  constexpr int samples = 100;
  constexpr int lines = 64;
  std::int64_t next_line = 0;
  const auto line_sums = [&next_line](std::int64_t line, std::span<PAIR_SUMS> pixels) {
    EXPECT_EQ(line, next_line++);
    FillPowers(line, pixels);
  };
  const GRID<PAIR_SUMS> grid = Multilook(line_sums, samples, lines, 33, 63);
  for (const PAIR_SUMS& cell : grid.Cells()) {
    EXPECT_NEAR(cell.weight, 1.0 * samples * lines / (33 * 63), 1e-9);
  }
  EXPECT_EQ(next_line, lines);
}

}  // namespace
