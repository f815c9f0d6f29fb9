#include "common/binary16.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(BINARY_16, NormalNumbersComeBackAndOthersHaveTheirValues) {
  for (unsigned bits = 0; bits < 0x10000; ++bits) {
    const auto half = static_cast<std::uint16_t>(bits);
    const unsigned exponent = (bits >> 10) & 0x1F;
    if (exponent != 0 && exponent != 0x1F) {
      ASSERT_EQ(DoubleToBinary16(Binary16ToDouble(half)), half);
    }
  }
  EXPECT_EQ(Binary16ToDouble(0xC001), -2.0 - 0x1p-9);
  EXPECT_EQ(Binary16ToDouble(0x0001), 0x1p-24);
  EXPECT_EQ(Binary16ToDouble(0xFC00), -HUGE_VAL);
  EXPECT_TRUE(std::isnan(Binary16ToDouble(0x7C01)));
}

TEST(BINARY_16, RoundsToEvenWithinTheNormalRange) {
  EXPECT_EQ(DoubleToBinary16(1.0 + 0x1p-11), 0x3C00);
  EXPECT_EQ(DoubleToBinary16(1.0 + 3 * 0x1p-11), 0x3C02);
  EXPECT_EQ(DoubleToBinary16(2.0 - 0x1p-12), 0x4000);
  EXPECT_EQ(DoubleToBinary16(-HUGE_VAL), 0xFBFF);
  EXPECT_EQ(DoubleToBinary16(0x1p-14 - 0x1p-24), 0x0000);
  EXPECT_EQ(DoubleToBinary16(std::nan("")), 0x7FFF);
}

}  // namespace
