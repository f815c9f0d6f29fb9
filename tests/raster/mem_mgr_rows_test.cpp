#include "base/complex.h"
#include "base/error_exception.h"
#include "raster_test.h"

namespace {

class MEM_MGR_ROWS : public RASTER_TEST {
 protected:
  using PIXEL = COMPLEX<std::int16_t>;

  /// 4 columns x 3 rows; a pixel's parts are its column and row.
  void SetUp() override {
    raster_.CreateInMemory(0, 0, 3, 2, PIXEL_TYPE::C_INT_16);
    for (std::int16_t row = 0; row < 3; ++row) {
      for (std::int16_t column = 0; column < 4; ++column) {
        raster_.Rows<PIXEL>()[row][column] = {column, row};
      }
    }
  }

  MEM_MGR raster_;
};

TEST_F(MEM_MGR_ROWS, EveryImageHasItsTableFromTheStart) {
  const auto* pixels = reinterpret_cast<const PIXEL*>(raster_.Data());
  for (std::ptrdiff_t row = 0; row < 3; ++row) {
    EXPECT_EQ(raster_.Rows<PIXEL>()[row], pixels + 4 * row);
  }
  EXPECT_EQ(pixels[11].re, 3);
  EXPECT_EQ(pixels[11].im, 2);
}

TEST_F(MEM_MGR_ROWS, RowsAndColumnsCountFromTheGivenOnes) {
  struct ORIGIN {
    std::int64_t column;
    std::int64_t row;
  };
  for (const ORIGIN origin : {ORIGIN{1, 1}, ORIGIN{-20, 1000}, ORIGIN{1LL << 40, -(1LL << 40)}}) {
    const auto* const* rows = raster_.GetNumRecMatrix<PIXEL>(origin.column, origin.row);
    EXPECT_EQ(rows[origin.row][origin.column].re, 0);
    EXPECT_EQ(rows[origin.row + 2][origin.column + 3].re, 3);
    EXPECT_EQ(rows[origin.row + 2][origin.column + 3].im, 2);
    EXPECT_EQ(raster_.Rows<PIXEL>(), rows);
    EXPECT_EQ(raster_.Bounds().first_column, origin.column);
    EXPECT_EQ(raster_.Bounds().first_row, origin.row);
    EXPECT_EQ(raster_.Bounds().last_column, origin.column + 3);
    EXPECT_EQ(raster_.Bounds().last_row, origin.row + 2);
    EXPECT_EQ(raster_.Width(), 4);
    EXPECT_EQ(raster_.Height(), 3);
  }
  EXPECT_TRUE(log_.Has("DEBUG : MEM_MGR: delete num. rec. interface .."));
}

TEST_F(MEM_MGR_ROWS, IndicesThatDoNotFitChangeNothing) {
  EXPECT_THROW(raster_.GetNumRecMatrix<PIXEL>(INT64_MAX - 2, 0), ERROR_ARGUMENT);
  EXPECT_THROW(raster_.GetNumRecMatrix<PIXEL>(0, INT64_MAX), ERROR_ARGUMENT);
  EXPECT_EQ(raster_.Rows<PIXEL>()[2][3].re, 3);
}

TEST_F(MEM_MGR_ROWS, RowsOfPixelsOfAnotherSizeAreRefused) {
  EXPECT_THROW(raster_.Rows<double>(), ERROR_NOT_SUPPORTED_PIXEL_TYPE);
  ExpectAlarm("MEM_MGR: pixels are 4 bytes long, not 8");
}

TEST_F(MEM_MGR_ROWS, AnEmptyManagerHasNoRows) {
  raster_.Unmap();
  EXPECT_THROW(raster_.Rows<PIXEL>(), ERROR_ALGORITHM);
  EXPECT_THROW(raster_.GetNumRecMatrix<PIXEL>(0, 0), ERROR_ALGORITHM);
  ExpectAlarm("MEM_MGR: no memory allocated for GetNumRecMatrix()");
}

#ifndef __SANITIZE_ADDRESS__  // which ends the program at an allocation of that size
TEST_F(MEM_MGR_ROWS, ATableThatDoesNotFitIntoMemoryIsReported) {
  WriteFile(File("raw"), "x");
  EXPECT_THROW(raster_.MapRaw(File("raw").c_str(), 0, 0, 0, (1LL << 45) - 1, read_only),
               ERROR_NO_MEMORY);
  ExpectAlarm("MEM_MGR: can not allocate memory");
  EXPECT_THROW(raster_.Rows<char>(), ERROR_ALGORITHM);
}
#endif

}  // namespace
