#include "interpolation/local_interpolation.h"

#include <gtest/gtest.h>

#include <cmath>

#include "interpolation/polynom.h"
#include "support/log_capture.h"
#include "support_points.h"

namespace {

using BORDERS = std::vector<double>;

/// Local interpolation of x^3 between five points.
class LocalInterpolationTest : public testing::Test {
 protected:
  void Init(int support_point_count) {
    local_.SetSupportPointCount(support_point_count);
    local_.Init(points_.Array());
  }

  /// Start of every piece, then the stop of the last one. Pieces join without gaps.
  BORDERS Borders() const {
    BORDERS borders = {local_.Piece(0).t_start};
    for (int k = 0; k < local_.PieceCount(); ++k) {
      EXPECT_EQ(local_.Piece(k).t_start, borders.back());
      borders.push_back(local_.Piece(k).t_stop);
    }
    return borders;
  }

  const SUPPORT_POINTS points_{{0.0, 1.0, 3.0, 4.0, 8.0}, [](double x) { return x * x * x; }};
  LOG_CAPTURE log_;
  LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>> local_;
};

TEST_F(LocalInterpolationTest, RunsHandOverBetweenTheirMiddles) {
  const struct {
    int support_point_count;
    BORDERS borders;
    double x;
    double y;
    double slope;
  } cases[] = {{1, {0.0, 0.5, 2.0, 3.5, 6.0, 8.0}, 3.4, 27.0, 0.0},
               {2, {0.0, 1.0, 3.0, 4.0, 8.0}, 2.0, 14.0, 13.0},
               // Through 1, 3 and 4: x^3 - (x - 1)(x - 3)(x - 4) = 8 x^2 - 19 x + 12.
               {3, {0.0, 2.0, 3.5, 6.0}, 2.5, 14.5, 21.0},
               {4, {0.0, 3.0, 4.0}, 3.5, 42.875, 36.75},
               {9, {0.0, 8.0}, 6.0, 216.0, 108.0}};
  for (const auto& [support_point_count, borders, x, y, slope] : cases) {
    SCOPED_TRACE(support_point_count);
    Init(support_point_count);
    EXPECT_EQ(Borders(), borders);
    EXPECT_NEAR(local_.GetY(x), y, 1e-12);
    EXPECT_NEAR(local_.GetDerivedY(x), slope, 1e-12);
  }
  EXPECT_TRUE(log_.Has("PARAM : LOCAL_INTERPOLATION: polynom count; 3"));
  EXPECT_TRUE(log_.Has("PARAM : idx_start=1 idx_stop=3 t_start=2.000000 t_stop=3.500000"));
  EXPECT_TRUE(log_.Has("WARN  : LOCAL_INTERPOLATION: change support_point_count from 9 to 5"));
}

TEST_F(LocalInterpolationTest, TheEndPiecesServeEverythingBeyondAndBordersTheLowerPiece) {
  local_.SetOption(1);
  local_.SetSupportPointCount(2);
  local_.InitSupport(points_.Array());
  EXPECT_EQ(local_.GetY(-2.0), -2.0);
  EXPECT_EQ(local_.GetDerived2Y(10.0), 0.0);
  EXPECT_EQ(local_.GetY(10.0), 512.0 + 2.0 * 112.0);
  EXPECT_EQ(local_.GetCoeffs(std::nan(""))[1], 112.0);
  EXPECT_EQ(local_.GetCoeffs(3.0)[1], 13.0);
  EXPECT_EQ(local_.GetCoeffs(std::nextafter(3.0, 4.0))[1], 37.0);
}

TEST_F(LocalInterpolationTest, WithoutPointsOrSupportItIsRefused) {
  EXPECT_THROW(local_.GetY(1.0), ERROR_ALGORITHM);
  EXPECT_EQ(log_.Text(), "ALARM : LOCAL_INTERPOLATION: evaluated before its set-up\n");
  EXPECT_THROW(Init(0), ERROR_ALGORITHM);
  ARRAY<POINT<double>> none;
  local_.SetSupportPointCount(2);
  EXPECT_THROW(local_.Init(none), ERROR_ALGORITHM);
}

}  // namespace
