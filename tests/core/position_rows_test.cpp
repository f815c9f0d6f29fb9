#include "core/fast/position_rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"
#include "support/log_capture.h"
#include "support/pool_text.h"
#include "supported_levels.h"

namespace {

/// None of the program's own.
class OTHER_MAPPING : public MAPPING_BASE {
 public:
  double GetSlaveRange(double range, double azimuth) const override { return range * azimuth; }
  double GetSlaveAzimuth(double range, double azimuth) const override { return range - azimuth; }
  unsigned GetMaxRange() const override { return 0; }
  unsigned GetMaxAzimuth() const override { return 0; }
};

class PositionRowsTest : public testing::Test {
 protected:
  /// Random shifts in files; some of them are no numbers.
  std::unique_ptr<MAPPING_BASE> Matrix(int columns, int lines, int rg_subsampling,
                                       int az_subsampling) {
    for (const char* name : {"rg", "az"}) {
      MEM_MGR raster;
      raster.Create(directory_.File(name).c_str(), 0, 0, columns - 1, lines - 1, PIXEL_TYPE::FLT_6);
      for (int line = 0; line < lines; ++line) {
        for (int column = 0; column < columns; ++column) {
          raster.Rows<float>()[line][column] =
              random_() % 50 == 0 ? std::nanf("")
                                  : std::uniform_real_distribution(-9.F, 9.F)(random_);
        }
      }
    }
    return std::make_unique<MAPPING_MATRIX>(directory_.File("rg").c_str(),
                                            directory_.File("az").c_str(), rg_subsampling,
                                            az_subsampling);
  }

  std::unique_ptr<MAPPING_BASE> Polynomial() {
    POOL_TEXT text;
    text.SetReals("respl_poly_rg", {3.3, 1e-3, -2e-3, 1e-6, 3e-7, -1.1e-6});
    text.SetReals("respl_poly_az", {-1.7, 2.1e-3, 1e-3, -1e-6, 3e-7, 1.3e-6});
    text.SetInteger("n_samples", 11);
    text.SetInteger("n_lines", 10);
    WriteFile(directory_.Path() / "insar.pool", text.Text());
    return std::make_unique<MAPPING_POLYNOMIAL>(directory_.File("insar.pool").c_str());
  }

  /// All strips of a master of some size, lines in the order of a chunk and with a leap back.
  static void CheckAgainst(const MAPPING_BASE& mapping, int width, unsigned height) {
    for (const LEVEL& level : SupportedLevels()) {
      const std::unique_ptr<POSITION_ROWS> rows = MakePositionRows(mapping, *level.functions);
      for (int first = 0; first < width; first += strip_columns) {
        const int count = std::min(strip_columns, width - first);
        rows->BeginStrip(first, count);
        for (const unsigned start : {0U, height / 2}) {
          for (unsigned line = start; line < height; ++line) {
            CheckLine(mapping, *rows, first, count, line);
          }
        }
      }
    }
  }

  static void CheckLine(const MAPPING_BASE& mapping, POSITION_ROWS& rows, int first, int count,
                        unsigned line) {
    alignas(64) double rg[strip_columns];
    alignas(64) double az[strip_columns];
    rows.Fill(line, rg, az);
    for (int x = 0; x < strip_columns; ++x) {
      if (x >= count) {
        ASSERT_TRUE(std::isnan(rg[x])) << "beyond the last column: " << x;
        continue;
      }
      ASSERT_TRUE(IsSame(rg[x], mapping.GetSlaveRange(first + x, line)))
          << first + x << ", " << line;
      ASSERT_TRUE(IsSame(az[x], mapping.GetSlaveAzimuth(first + x, line)))
          << first + x << ", " << line;
    }
  }

  static bool IsSame(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

  std::mt19937 random_{1};
  TEMPORARY_DIRECTORY directory_;
  LOG_CAPTURE log_;
};

TEST_F(PositionRowsTest, MatricesGiveTheMappingsOwnPositions) {
  CheckAgainst(*Matrix(30, 20, 7, 5), 230, 120);
  CheckAgainst(*Matrix(100, 50, 1, 1), 90, 60);
  CheckAgainst(*Matrix(4, 3, 32, 32), 150, 100);
  // Without an interior, so that they shift nothing.
  CheckAgainst(*Matrix(1, 1, 32, 32), 70, 40);
  CheckAgainst(*Matrix(5, 1, 8, 8), 70, 10);
}

TEST_F(PositionRowsTest, PolynomialsGiveTheMappingsOwnPositions) {
  const std::unique_ptr<MAPPING_BASE> mapping = Polynomial();
  CheckAgainst(*mapping, 150, 40);
  EXPECT_EQ(mapping->GetMaxRange(), 10U);
  EXPECT_EQ(mapping->GetMaxAzimuth(), 9U);
}

TEST_F(PositionRowsTest, OtherMappingsAreAsked) {
  CheckAgainst(OTHER_MAPPING(), 100, 20);
  EXPECT_THROW(CheckAgainst(MAPPING_MATRIX(), 10, 10), ERROR_UNHANDLED_CASE) << "not set up";
}

}  // namespace
