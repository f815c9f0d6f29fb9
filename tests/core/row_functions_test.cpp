#include "core/fast/row_functions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <utility>

#include "core/pixel_codec.h"
#include "supported_levels.h"

namespace {

/// Values for an encoder: ties, limits and everything between, in pairs of neighbours.
std::vector<double> ValuesToEncode() {
  std::vector<double> values = {0.0,      -0.0,        32767.0,     32767.5, 32768.0, -32768.0,
                                -32768.5, 65504.0,     65519.0,     65520.0, 1e9,     -1e9,
                                0x1p-14,  0x1.ffdp-15, 0x1.ffep-15, 1e-300};
  std::mt19937 random(1);
  for (int i = 0; i < 4000; ++i) {
    values.push_back(static_cast<int>(random() % 70000) - 35000 + 0.5);
    values.push_back(std::ldexp(1.0 + static_cast<double>(random() % 2048) / 2048.0,
                                static_cast<int>(random() % 36) - 18));
  }
  const std::size_t count = values.size();
  for (std::size_t i = 0; i < count; ++i) {
    values.push_back(-values[i]);
    values.push_back(std::nextafter(values[i], 1e300));
    values.push_back(std::nextafter(values[i], -1e300));
  }
  values.resize(values.size() / group_columns * group_columns);
  return values;
}

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

TEST(RowFunctionsTest, AllPatternsAreDecodedAsByTheCodecs) {
  for (const LEVEL& level : SupportedLevels()) {
    for (unsigned pattern = 0; pattern <= 0xFFFF; ++pattern) {
      const auto re = static_cast<std::uint16_t>(pattern);
      const auto im = static_cast<std::uint16_t>(pattern * 7919U);
      double integer[2];
      double half[2];
      const INT_16_CODEC::PIXEL integer_pixel = {static_cast<std::int16_t>(re),
                                                 static_cast<std::int16_t>(im)};
      const BINARY_16_CODEC::PIXEL half_pixel = {re, im};
      level.functions->int_16.decode(&integer_pixel, 1, {integer, integer + 1});
      level.functions->binary_16.decode(&half_pixel, 1, {half, half + 1});
      EXPECT_EQ(integer[0], static_cast<std::int16_t>(re));
      EXPECT_EQ(integer[1], static_cast<std::int16_t>(im));
      const double expected = BINARY_16_CODEC::Decode(re);
      ASSERT_EQ(std::isfinite(half[0]), std::isfinite(expected)) << pattern;
      ASSERT_TRUE(half[0] == expected || !std::isfinite(expected)) << pattern;
    }
  }
}

template <class CODEC>
void CheckEncoder(const PIXEL_FUNCTIONS<typename CODEC::PIXEL>& functions) {
  const std::vector<double> values = ValuesToEncode();
  const std::vector<double> reversed(values.rbegin(), values.rend());
  const int count = static_cast<int>(values.size());
  std::vector<typename CODEC::PIXEL> encoded(values.size());
  EXPECT_TRUE(functions.encode({values.data(), reversed.data()}, count, encoded.data()));
  for (std::size_t i = 0; i < values.size(); ++i) {
    ASSERT_EQ(encoded[i].re, CODEC::Encode(values[i])) << values[i];
    ASSERT_EQ(encoded[i].im, CODEC::Encode(reversed[i])) << reversed[i];
  }
  for (const double unusual : {0x1p30, -0x1p31, 1e300, std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN()}) {
    for (const std::size_t place : {std::size_t{0}, std::size_t{13}, values.size() - 1}) {
      std::vector<double> with_unusual = values;
      with_unusual[place] = unusual;
      EXPECT_FALSE(functions.encode({with_unusual.data(), values.data()}, count, encoded.data()));
      EXPECT_FALSE(functions.encode({values.data(), with_unusual.data()}, count, encoded.data()));
    }
  }
}

TEST(RowFunctionsTest, EncodersRoundAndSaturateAsTheCodecsAndReportTheUnusual) {
  for (const LEVEL& level : SupportedLevels()) {
    SCOPED_TRACE(level.variant->name);
    CheckEncoder<INT_16_CODEC>(level.functions->int_16);
    CheckEncoder<BINARY_16_CODEC>(level.functions->binary_16);
  }
}

}  // namespace
