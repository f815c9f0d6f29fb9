#include "mapping/mapping_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "base/error_exception.h"
#include "support/grid.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

namespace {

using SHIFTS = GRID<float>;

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
