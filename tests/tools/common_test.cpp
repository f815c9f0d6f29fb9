#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/binary16.h"
#include "common/number_checks.h"
#include "tools/image_test.h"

namespace {

TEST(NUMBER_CHECKS, TakeFiniteNumbersAndTellTheTextOnly) {
  for (const std::string text : {"0", "-1", "nan", "inf", "1e400", "1x", "", "--posting"}) {
    EXPECT_EQ(positive_number(text), text + " is no positive number");
    EXPECT_EQ(non_negative_number(text), text == "0" ? "" : text + " is no number from 0 on");
  }
  EXPECT_EQ(positive_number("1e-300") + non_negative_number("7"), "");
}

TEST(BINARY_16, HasItsValuesAndRoundsToEvenWithinTheNormalRange) {
  for (unsigned bits = 0; bits < 0x10000; ++bits) {
    const auto half = static_cast<std::uint16_t>(bits);
    const unsigned exponent = (bits >> 10) & 0x1F;
    if (exponent != 0 && exponent != 0x1F) {
      ASSERT_EQ(DoubleToBinary16(Binary16ToDouble(half)), half);
    }
  }
  for (const auto& [half, value] :
       {std::pair{0xC001, -2.0 - 0x1p-9}, {0x0001, 0x1p-24}, {0xFC00, -HUGE_VAL}}) {
    EXPECT_EQ(Binary16ToDouble(static_cast<std::uint16_t>(half)), value);
  }
  EXPECT_TRUE(std::isnan(Binary16ToDouble(0x7C01)));
  for (const auto& [value, half] : {std::pair{1.0 + 0x1p-11, 0x3C00},
                                    {1.0 + 3 * 0x1p-11, 0x3C02},
                                    {2.0 - 0x1p-12, 0x4000},
                                    {-HUGE_VAL, 0xFBFF},
                                    {0x1p-14 - 0x1p-24, 0x0000},
                                    {std::nan(""), 0x7FFF}}) {
    EXPECT_EQ(DoubleToBinary16(value), half);
  }
}

class RASTERS : public IMAGE_TEST {
 protected:
  using LINE = std::vector<VALUE>;

  static VALUE Pixel(int sample, int line) { return {10.0 * line + sample + 0.5, -40000.0}; }

  static LINE Line(const RASTER_READER& raster, std::int64_t line, std::int64_t first,
                   std::size_t count) {
    LINE values(count);
    raster.ReadLine(line, first, values);
    return values;
  }
};

TEST_F(RASTERS, PixelsComeBackRoundedAndSaturated) {
  const RASTER_READER single = Complex("single", 3, 2, Pixel);
  EXPECT_TRUE(single.IsComplex());
  EXPECT_EQ(Line(single, 1, 1, 2), LINE({{11.5, -40000.0}, {12.5, -40000.0}}));
  const RASTER_READER half = Complex("half", 3, 2, Pixel, PIXEL_TYPE::C_FLT_2);
  EXPECT_EQ(Line(half, 0, 0, 1), LINE({{0.5, -40000.0}}));
  const RASTER_READER integer = Complex("integer", 3, 2, Pixel, PIXEL_TYPE::C_INT_16);
  EXPECT_EQ(Line(integer, 1, 0, 3), LINE({{10.0, -32768.0}, {12.0, -32768.0}, {12.0, -32768.0}}));

  const auto real = [](int sample, int) { return sample == 0 ? 300.0 : -2.25; };
  EXPECT_EQ(Line(Real("real", 2, 1, real), 0, 0, 2), LINE({300.0, -2.25}));
  const RASTER_READER byte = Real("byte", 2, 1, real, PIXEL_TYPE::U_INT_8);
  EXPECT_FALSE(byte.IsComplex());
  EXPECT_EQ(Line(byte, 0, 0, 2), LINE({255.0, 0.0}));
}

TEST_F(RASTERS, PixelsOutsideAndOtherTypesAreRefused) {
  const RASTER_READER raster = Complex("raster", 3, 2, Pixel);
  EXPECT_THROW(Line(raster, 2, 0, 1), std::out_of_range);
  EXPECT_THROW(Line(raster, -1, 0, 1), std::out_of_range);
  EXPECT_THROW(Line(raster, 0, 2, 2), std::out_of_range);
  EXPECT_THROW(Line(raster, 0, -1, 2), std::out_of_range);
  EXPECT_THROW(Complex("raster", 3, 2, Pixel, PIXEL_TYPE::FLT_6), std::invalid_argument);
}

}  // namespace
