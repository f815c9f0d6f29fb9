#include "mapping/mapping_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "base/error_exception.h"
#include "support/log_capture.h"
#include "support/temporary_directory.h"

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr unsigned real_32_bit = 99;

/// The shifts of one mapping file, line by line.
struct SHIFTS {
  unsigned width;
  unsigned height;
  std::vector<float> values;

  static SHIFTS Constant(unsigned width, unsigned height, float value) {
    return {width, height, std::vector<float>(std::size_t{width} * height, value)};
  }

  static SHIFTS Random(unsigned width, unsigned height, unsigned seed) {
    SHIFTS shifts = Constant(width, height, 0.0F);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> shift(-30.0F, 30.0F);
    for (float& value : shifts.values) {
      value = shift(random);
    }
    return shifts;
  }

  double At(std::size_t column, std::size_t line) const { return values[line * width + column]; }
};

/// The file's bytes: eight big-endian words, then the pixels.
std::string RasterFile(const SHIFTS& shifts, unsigned type_word) {
  const unsigned length = 4 * shifts.width * shifts.height;
  std::string bytes;
  for (const unsigned word :
       {0x59A66A95U, shifts.width, shifts.height, 32U, length, type_word, 0U, 0U}) {
    for (const int shift : {24, 16, 8, 0}) {
      bytes += static_cast<char>(word >> shift & 0xFFU);
    }
  }
  std::string pixels(length, '\0');
  std::memcpy(pixels.data(), shifts.values.data(), length);
  return bytes + pixels;
}

class MappingMatrixTest : public testing::Test {
 protected:
  void WriteFiles(const SHIFTS& range, const SHIFTS& azimuth,
                  unsigned range_type_word = real_32_bit,
                  unsigned azimuth_type_word = real_32_bit) const {
    WriteFile(range_file_, RasterFile(range, range_type_word));
    WriteFile(azimuth_file_, RasterFile(azimuth, azimuth_type_word));
  }

  void Open(int rg_subsampling, int az_subsampling) {
    mapping_.Open(range_file_.c_str(), azimuth_file_.c_str(), rg_subsampling, az_subsampling);
  }

  void ExpectUnshifted(double x, double y) const {
    for (const auto& [position, slave] : {std::pair{x, mapping_.GetSlaveRange(x, y)},
                                          std::pair{y, mapping_.GetSlaveAzimuth(x, y)}}) {
      EXPECT_TRUE(slave == position || (std::isnan(slave) && std::isnan(position)))
          << "at " << x << ' ' << y << ": " << slave;
    }
  }

  /// The lines that do not come from the rasters.
  std::vector<std::string> OwnLines() const {
    std::vector<std::string> lines = log_.Lines();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("DEBUG : "); });
    return lines;
  }

  TEMPORARY_DIRECTORY directory_;
  const std::string range_file_ = directory_.File("range.ras");
  const std::string azimuth_file_ = directory_.File("azimuth.ras");
  LOG_CAPTURE log_;
  MAPPING_MATRIX mapping_;
};

/// The bilinear shift at a master position, straight from its formula.
double BilinearShift(const SHIFTS& shifts, double u, double v) {
  const auto i = static_cast<std::size_t>(u);
  const auto j = static_cast<std::size_t>(v);
  const double a = u - static_cast<double>(i);
  const double b = v - static_cast<double>(j);
  return (1.0 - b) * (shifts.At(i + 1, j) * a + shifts.At(i, j) * (1.0 - a)) +
         (shifts.At(i + 1, j + 1) * a + shifts.At(i, j + 1) * (1.0 - a)) * b;
}

TEST_F(MappingMatrixTest, PositionsAreExactToTheLastBit) {
  const SHIFTS range = SHIFTS::Random(9, 6, 1);
  const SHIFTS azimuth = SHIFTS::Random(9, 6, 2);
  WriteFiles(range, azimuth);
  for (const auto& [rg_subsampling, az_subsampling] : {std::pair{32, 32}, {7, 13}, {1, 3}}) {
    Open(rg_subsampling, az_subsampling);
    for (int y = 0; y < 5 * az_subsampling; ++y) {
      for (int x = 0; x < 8 * rg_subsampling; ++x) {
        const double u = x / static_cast<double>(rg_subsampling);
        const double v = y / static_cast<double>(az_subsampling);
        ASSERT_EQ(mapping_.GetSlaveRange(x, y), x + BilinearShift(range, u, v)) << x << ' ' << y;
        ASSERT_EQ(mapping_.GetSlaveAzimuth(x, y), y + BilinearShift(azimuth, u, v))
            << x << ' ' << y;
      }
    }
  }
}

TEST_F(MappingMatrixTest, PositionsOutsideTheGridComeBackUnshifted) {
  WriteFiles(SHIFTS::Constant(5, 4, 2.5F), SHIFTS::Constant(5, 4, -1.5F));
  Open(10, 20);
  EXPECT_EQ(mapping_.GetSlaveRange(39.0, 59.0), 41.5);
  EXPECT_EQ(mapping_.GetSlaveAzimuth(39.0, 59.0), 57.5);
  EXPECT_EQ(mapping_.GetSlaveRange(0.0, 0.0), 2.5);
  for (const auto& [x, y] : {std::pair{40.0, 10.0},
                             {10.0, 60.0},
                             {49.0, 79.0},
                             {-1.0, 10.0},
                             {10.0, -0.5},
                             {1e300, 10.0},
                             {nan, 10.0},
                             {10.0, nan},
                             {infinity, 10.0},
                             {10.0, -infinity}}) {
    ExpectUnshifted(x, y);
  }
}

TEST_F(MappingMatrixTest, CoversTheGridTimesItsSubsampling) {
  WriteFiles(SHIFTS::Constant(5, 4, 1.0F), SHIFTS::Constant(5, 4, 2.0F));
  const MAPPING_MATRIX mapping(range_file_.c_str(), azimuth_file_.c_str(), 10, 20);
  EXPECT_EQ(mapping.GetMaxRange(), 49U);
  EXPECT_EQ(mapping.GetMaxAzimuth(), 79U);
  EXPECT_EQ(mapping.GetSlaveRange(1.0, 1.0), 2.0);
  EXPECT_EQ(mapping.GetSlaveAzimuth(1.0, 1.0), 3.0);
}

TEST_F(MappingMatrixTest, OpeningLogsTheFilesAndBothOverviews) {
  WriteFiles(SHIFTS::Constant(5, 4, 0.0F), SHIFTS::Constant(5, 4, 0.0F));
  Open(10, 20);
  const std::vector<std::string> overview = {
      "INFO  : MATRIX_INTERPOLATION: Overview of initialized parameters:",
      "INFO  : --------------------------------------------------",
      "INFO  : rg_size: ........... 5", "INFO  : az_size: ........... 4",
      "INFO  : degree: ............ 2"};
  std::vector<std::string> expected = {"TRACE : - open range mapping file: " + range_file_,
                                       "TRACE : - open azimuth mapping file: " + azimuth_file_};
  expected.insert(expected.end(), overview.begin(), overview.end());
  expected.insert(expected.end(), overview.begin(), overview.end());
  EXPECT_EQ(OwnLines(), expected);

  mapping_.InitInterpolation();
  expected.insert(expected.end(), overview.begin(), overview.end());
  expected.insert(expected.end(), overview.begin(), overview.end());
  EXPECT_EQ(OwnLines(), expected);
}

TEST_F(MappingMatrixTest, FilesOfDifferentSizesAreRefused) {
  WriteFiles(SHIFTS::Constant(100, 50, 0.0F), SHIFTS::Constant(100, 51, 0.0F));
  EXPECT_THROW(Open(10, 20), ERROR_DATA);
  EXPECT_TRUE(log_.Has("ALARM : mapping files have diffent height: 50 != 51 ")) << log_.Text();
  WriteFiles(SHIFTS::Constant(7, 50, 0.0F), SHIFTS::Constant(8, 51, 0.0F));
  EXPECT_THROW(Open(10, 20), ERROR_DATA);
  EXPECT_TRUE(log_.Has("ALARM : mapping files have diffent width: 7 != 8 ")) << log_.Text();
}

TEST_F(MappingMatrixTest, PixelsThatAreNotRealOf32BitsAreRefused) {
  const SHIFTS shifts = SHIFTS::Constant(5, 4, 1.0F);
  for (const unsigned complex_or_integer : {97U, 92U, 1U}) {
    WriteFiles(shifts, shifts, complex_or_integer, real_32_bit);
    EXPECT_THROW(Open(10, 20), ERROR_NOT_SUPPORTED_PIXEL_TYPE);
    WriteFiles(shifts, shifts, real_32_bit, complex_or_integer);
    EXPECT_THROW(Open(10, 20), ERROR_NOT_SUPPORTED_PIXEL_TYPE);
    EXPECT_EQ(log_.Lines().back(),
              "ALARM : pixels of the mapping file are not 32-bit real: " + azimuth_file_);
  }
  for (const unsigned legacy_real : {199U, 200U}) {
    WriteFiles(shifts, shifts, legacy_real, legacy_real);
    Open(10, 20);
    EXPECT_EQ(mapping_.GetSlaveRange(3.0, 4.0), 4.0);
  }
}

TEST_F(MappingMatrixTest, SubsamplingBelowOneIsRefusedBeforeAnyFileIsOpened) {
  for (const auto& [rg_subsampling, az_subsampling] : {std::pair{0, 1}, {1, 0}, {-32, 32}}) {
    EXPECT_THROW(Open(rg_subsampling, az_subsampling), ERROR_ARGUMENT);
  }
  EXPECT_EQ(log_.Lines().back(),
            "ALARM : subsampling of the mapping files must be at least 1, not -32 in range and 32 "
            "in azimuth");
  EXPECT_EQ(log_.Lines().size(), 3U);
}

TEST_F(MappingMatrixTest, NothingIsEvaluatedWithoutOpenFiles) {
  EXPECT_THROW(mapping_.GetSlaveRange(1.0, 1.0), ERROR_UNHANDLED_CASE);
  WriteFiles(SHIFTS::Constant(5, 4, 1.0F), SHIFTS::Constant(5, 4, 1.0F));
  Open(10, 20);
  EXPECT_EQ(mapping_.GetSlaveAzimuth(1.0, 1.0), 2.0);

  std::filesystem::remove(azimuth_file_);
  EXPECT_THROW(Open(10, 20), ERROR_CAN_NOT_OPEN_FILE);
  EXPECT_THROW(mapping_.GetSlaveAzimuth(1.0, 1.0), ERROR_UNHANDLED_CASE);
}

TEST_F(MappingMatrixTest, CanBeOpenedAgainOnOtherFiles) {
  WriteFiles(SHIFTS::Constant(50, 40, 1.0F), SHIFTS::Constant(50, 40, 1.0F));
  Open(10, 20);
  std::filesystem::remove(range_file_);
  std::filesystem::remove(azimuth_file_);
  WriteFiles(SHIFTS::Constant(3, 2, 4.0F), SHIFTS::Constant(3, 2, 5.0F));
  Open(1, 1);
  EXPECT_EQ(mapping_.GetSlaveRange(1.0, 0.0), 5.0);
  EXPECT_EQ(mapping_.GetSlaveAzimuth(1.0, 0.0), 5.0);
  ExpectUnshifted(2.0, 0.0);
}

}  // namespace
