#include "mapping/mapping_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "base/error_exception.h"
#include "support/grid.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

namespace {

using SHIFTS = GRID<float>;

SHIFTS RandomShifts(int width, int height, unsigned seed) {
  SHIFTS shifts(width, height);
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> shift(-30.0F, 30.0F);
  for (float& value : shifts.values) {
    value = shift(random);
  }
  return shifts;
}

/// The bilinear shift at a position in grid units, straight from its formula.
double BilinearShift(const SHIFTS& shifts, double u, double v) {
  const int i = static_cast<int>(u);
  const int j = static_cast<int>(v);
  const double a = u - i;
  const double b = v - j;
  return (1.0 - b) * (shifts.At(i + 1, j) * a + shifts.At(i, j) * (1.0 - a)) +
         (shifts.At(i + 1, j + 1) * a + shifts.At(i, j + 1) * (1.0 - a)) * b;
}

class MappingMatrixTest : public testing::Test {
 protected:
  static void WriteShifts(const std::string& file, const SHIFTS& shifts,
                          PIXEL_TYPE type = PIXEL_TYPE::FLT_6) {
    MEM_MGR raster;
    raster.Create(file.c_str(), 0, 0, shifts.width - 1, shifts.height - 1, type);
    std::memcpy(raster.Data(), shifts.values.data(), shifts.values.size() * sizeof(float));
  }

  void Open(int rg_subsampling, int az_subsampling) {
    mapping_.Open(range_file_.c_str(), azimuth_file_.c_str(), rg_subsampling, az_subsampling);
  }

  TEMPORARY_DIRECTORY directory_;
  const std::string range_file_ = directory_.File("range.ras");
  const std::string azimuth_file_ = directory_.File("azimuth.ras");
  LOG_CAPTURE log_;
  MAPPING_MATRIX mapping_;
};

TEST_F(MappingMatrixTest, PositionsAreExactToTheLastBit) {
  const SHIFTS range = RandomShifts(9, 6, 1);
  const SHIFTS azimuth = RandomShifts(9, 6, 2);
  WriteShifts(range_file_, range);
  WriteShifts(azimuth_file_, azimuth);
  for (const auto& [rg_subsampling, az_subsampling] : {std::pair{32, 32}, {7, 13}, {1, 3}}) {
    Open(rg_subsampling, az_subsampling);
    for (int pixel = 0; pixel < 40 * rg_subsampling * az_subsampling; ++pixel) {
      const int x = pixel % (8 * rg_subsampling);
      const int y = pixel / (8 * rg_subsampling);
      const double u = x / static_cast<double>(rg_subsampling);
      const double v = y / static_cast<double>(az_subsampling);
      ASSERT_EQ(mapping_.GetSlaveRange(x, y), x + BilinearShift(range, u, v)) << x << ' ' << y;
      ASSERT_EQ(mapping_.GetSlaveAzimuth(x, y), y + BilinearShift(azimuth, u, v)) << x << ' ' << y;
    }
  }
}

TEST_F(MappingMatrixTest, PositionsOutsideTheGridComeBackUnshifted) {
  WriteShifts(range_file_, SHIFTS(5, 4, 2.5F));
  WriteShifts(azimuth_file_, SHIFTS(5, 4, -1.5F));
  const MAPPING_MATRIX mapping(range_file_.c_str(), azimuth_file_.c_str(), 10, 20);
  EXPECT_EQ(mapping.GetSlaveRange(39.0, 59.0), 41.5);
  EXPECT_EQ(mapping.GetSlaveAzimuth(39.0, 59.0), 57.5);
  EXPECT_EQ(mapping.GetMaxRange(), 49U);
  EXPECT_EQ(mapping.GetMaxAzimuth(), 79U);
  const double infinity = std::numeric_limits<double>::infinity();
  for (const auto& [x, y] : {std::pair{40.0, 10.0}, {10.0, 60.0}, {-1.0, 10.0}, {infinity, 10.0}}) {
    EXPECT_EQ(mapping.GetSlaveRange(x, y), x) << x << ' ' << y;
    EXPECT_EQ(mapping.GetSlaveAzimuth(x, y), y) << x << ' ' << y;
  }
  EXPECT_TRUE(std::isnan(mapping.GetSlaveRange(std::nan(""), 10.0)));
  EXPECT_EQ(mapping.GetSlaveAzimuth(std::nan(""), 10.0), 10.0);
}

TEST_F(MappingMatrixTest, NothingIsEvaluatedUntilFilesAreOpenedAndAfterAFailure) {
  EXPECT_THROW(mapping_.GetSlaveRange(1.0, 1.0), ERROR_UNHANDLED_CASE);
  const SHIFTS shifts(5, 4, 1.0F);
  for (const std::string& wrong_file : {range_file_, azimuth_file_}) {
    WriteShifts(range_file_, shifts);
    WriteShifts(azimuth_file_, shifts);
    Open(10, 20);
    EXPECT_EQ(mapping_.GetSlaveAzimuth(1.0, 1.0), 2.0);
    WriteShifts(wrong_file, shifts, PIXEL_TYPE::C_INT_16);
    EXPECT_THROW(Open(10, 20), ERROR_NOT_SUPPORTED_PIXEL_TYPE);
    EXPECT_THROW(mapping_.GetSlaveAzimuth(1.0, 1.0), ERROR_UNHANDLED_CASE);
  }
}

}  // namespace
