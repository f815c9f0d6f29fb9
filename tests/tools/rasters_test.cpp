#include <gtest/gtest.h>

#include <stdexcept>

#include "common/raster_reader.h"
#include "common/raster_writer.h"
#include "support/temporary_directory.h"

namespace {

using LINE = std::vector<std::complex<double>>;

class RASTERS : public testing::Test {
 protected:
  LINE Line(std::int64_t line, std::int64_t first, std::size_t count) const {
    LINE values(count);
    RASTER_READER(path_).ReadLine(line, first, values);
    return values;
  }

  /// A 3 x 2 raster whose pixel (sample, line) is (10 line + sample + 0.5, -40000).
  void WriteComplex(PIXEL_TYPE type) const {
    WriteRaster(path_, 3, 2, type, [](std::int64_t line, std::span<std::complex<double>> values) {
      for (std::size_t sample = 0; sample < values.size(); ++sample) {
        values[sample] = {10.0 * static_cast<double>(line) + static_cast<double>(sample) + 0.5,
                          -40000.0};
      }
    });
  }

  void WriteReal(PIXEL_TYPE type, double value) const {
    WriteRealRaster(path_, 1, 1, type,
                    [&](std::int64_t, std::span<double> values) { values[0] = value; });
  }

  TEMPORARY_DIRECTORY directory_;
  std::string path_ = directory_.File("test.ras");
};

TEST_F(RASTERS, ComplexLinesComeBack) {
  WriteComplex(PIXEL_TYPE::C_FLT_6);
  EXPECT_TRUE(RASTER_READER(path_).IsComplex());
  EXPECT_EQ(Line(1, 1, 2), LINE({{11.5, -40000.0}, {12.5, -40000.0}}));
  WriteComplex(PIXEL_TYPE::C_FLT_2);
  EXPECT_EQ(Line(0, 0, 1), LINE({{0.5, -40000.0}}));
}

TEST_F(RASTERS, IntegersAreRoundedAndSaturated) {
  WriteComplex(PIXEL_TYPE::C_INT_16);
  EXPECT_EQ(Line(1, 0, 3), LINE({{10.0, -32768.0}, {12.0, -32768.0}, {12.0, -32768.0}}));
  WriteReal(PIXEL_TYPE::U_INT_8, 300.0);
  EXPECT_FALSE(RASTER_READER(path_).IsComplex());
  EXPECT_EQ(Line(0, 0, 1), LINE({255.0}));
}

TEST_F(RASTERS, RealPixelsHaveNoImaginaryPart) {
  WriteReal(PIXEL_TYPE::FLT_6, -2.25);
  EXPECT_EQ(Line(0, 0, 1), LINE({-2.25}));
}

TEST_F(RASTERS, PixelsOutsideAreRefused) {
  WriteComplex(PIXEL_TYPE::C_INT_16);
  EXPECT_THROW(Line(2, 0, 1), std::out_of_range);
  EXPECT_THROW(Line(-1, 0, 1), std::out_of_range);
  EXPECT_THROW(Line(0, 2, 2), std::out_of_range);
  EXPECT_THROW(Line(0, -1, 2), std::out_of_range);
}

TEST_F(RASTERS, OtherPixelTypesAreNotWritten) {
  EXPECT_THROW(WriteComplex(PIXEL_TYPE::FLT_6), std::invalid_argument);
  EXPECT_THROW(WriteReal(PIXEL_TYPE::C_INT_16, 0.0), std::invalid_argument);
}

}  // namespace
