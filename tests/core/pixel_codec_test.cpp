#include "core/pixel_codec.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

TEST(Int16CodecTest, SaturatesAndRoundsHalfAwayFromZero) {
  const std::pair<double, int> cases[] = {
      {2.5, 3},          {-2.5, -3},          {2.499999, 2},      {-0.5, -1},
      {0.49999, 0},      {-0.49999, 0},       {40000.0, 32767},   {-40000.0, -32768},
      {32767.0, 32767},  {32766.5, 32767},    {-32768.0, -32768}, {-32767.5, -32768},
      {infinity, 32767}, {-infinity, -32768}, {not_a_number, 0},  {-0.0, 0}};
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(INT_16_CODEC::Encode(value), expected) << value;
  }
}

TEST(Binary16CodecTest, EncodesTheKnownPatterns) {
  const std::pair<double, unsigned> cases[] = {{-0.0, 0x0000},
                                               {65504.0, 0x7BFF},
                                               {70000.0, 0x7BFF},
                                               {-70000.0, 0xFBFF},
                                               {-infinity, 0xFBFF},
                                               {not_a_number, 0x7FFF},
                                               {-not_a_number, 0xFFFF},
                                               {-1.0e-6, 0x0000},
                                               // The largest value that is rounded up to 2^-14.
                                               {0x1.ffep-15, 0x0400},
                                               {0x1.ffdp-15, 0x0000},
                                               // Half up on the magnitude, whatever follows.
                                               {1.0 + 0x1p-11, 0x3C01},
                                               {-1.0 - 0x1p-11, 0xBC01},
                                               {1.0 + 0x1.ffffp-12, 0x3C00},
                                               {1.0 + 3 * 0x1p-11, 0x3C02}};
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(BINARY_16_CODEC::Encode(value), expected) << value;
  }
}

TEST(Binary16CodecTest, EveryFinitePatternIsDecodedAsANormalNumberAndComesBack) {
  for (unsigned pattern = 1; pattern <= 0xFFFF; ++pattern) {
    const int exponent = static_cast<int>((pattern >> 10) & 0x1F);
    const auto component = static_cast<std::uint16_t>(pattern);
    const double value = BINARY_16_CODEC::Decode(component);
    const double magnitude = std::ldexp(1024.0 + (pattern & 0x3FF), exponent - 25);
    ASSERT_EQ(std::isfinite(value), exponent != 0x1F) << pattern;
    if (exponent != 0x1F) {
      ASSERT_EQ(value, (pattern & 0x8000) != 0 ? -magnitude : magnitude) << pattern;
      ASSERT_EQ(BINARY_16_CODEC::Encode(value), exponent == 0 ? 0 : component) << pattern;
    }
  }
}

}  // namespace
