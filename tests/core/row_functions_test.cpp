#include "core/fast/row_functions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <utility>

#include "supported_levels.h"

namespace {

/// The sines and cosines of a strip, which are to be computed from `turns`.
struct PHASORS {
  double turns[strip_columns];
  double cosine[strip_columns];
  double sine[strip_columns];

  void ExpectRight() const {
    for (int x = 0; x < strip_columns; ++x) {
      const long double angle = 2.0L * std::numbers::pi_v<long double> * turns[x];
      EXPECT_NEAR(cosine[x], static_cast<double>(std::cos(angle)), 5e-16) << turns[x];
      EXPECT_NEAR(sine[x], static_cast<double>(std::sin(angle)), 5e-16) << turns[x];
    }
  }
};

TEST(RowFunctionsTest, SinesAndCosinesOfAnyNumberOfTurns) {
  std::mt19937 random(1);
  for (const LEVEL& level : SupportedLevels()) {
    for (const double size : {0.1, 1.0, 100.0}) {
      PHASORS phasors;
      for (double& angle : phasors.turns) {
        angle = std::uniform_real_distribution(-size, size)(random);
      }
      phasors.turns[0] = 0.25;
      phasors.turns[1] = -0.5;
      level.functions->sine_cosine(phasors.turns, strip_columns, {phasors.cosine, phasors.sine});
      phasors.ExpectRight();
    }
  }
}

TEST(RowFunctionsTest, SinesAndCosinesOfCloseTurnsOrNone) {
  for (const LEVEL& level : SupportedLevels()) {
    for (const double middle : {0.0, 0.2, -3.7, 41.25}) {
      PHASORS phasors;
      const auto evaluate = [&] {
        return level.functions->close_sine_cosine(phasors.turns, {phasors.cosine, phasors.sine});
      };
      for (int x = 0; x < strip_columns; ++x) {
        phasors.turns[x] = middle + 0.999 * 0x1p-15 * (x - strip_columns / 2);
      }
      EXPECT_TRUE(evaluate());
      phasors.ExpectRight();
      for (const double far : {middle - 0x1p-10, middle + 0x1p-9, std::nan("")}) {
        for (const int x : {0, strip_columns / 2 + 1, strip_columns - 1}) {
          const double kept = std::exchange(phasors.turns[x], far);
          EXPECT_FALSE(evaluate()) << far << " at " << x;
          phasors.turns[x] = kept;
        }
      }
    }
  }
}

}  // namespace
