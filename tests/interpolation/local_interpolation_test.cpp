#include "interpolation/local_interpolation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "interpolation/polynom.h"
#include "support/log_capture.h"
#include "support_points.h"

namespace {

using LOCAL = LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>;

double Cube(double x) {
  return x * x * x;
}

const std::vector<double> five_abscissae = {0.0, 1.0, 3.0, 4.0, 8.0};

/// Local interpolation of x^3 between five points.
class LocalInterpolationTest : public testing::Test {
 protected:
  void Init(int support_point_count) {
    local_.SetSupportPointCount(support_point_count);
    local_.Init(points_.Array());
  }

  /// Start of every piece, then the stop of the last one. Pieces join without gaps.
  std::vector<double> Borders() const {
    std::vector<double> borders = {local_.Piece(0).t_start};
    for (int k = 0; k < local_.PieceCount(); ++k) {
      EXPECT_EQ(local_.Piece(k).t_start, borders.back());
      borders.push_back(local_.Piece(k).t_stop);
    }
    return borders;
  }

  int PieceOf(double x) const { return static_cast<int>(&local_.PieceAt(x) - &local_.Piece(0)); }

  const SUPPORT_POINTS points_{five_abscissae, Cube};
  LOG_CAPTURE log_;
  LOCAL local_;
};

TEST_F(LocalInterpolationTest, TwoPointsAPieceJoinThePointsByLines) {
  Init(2);
  EXPECT_EQ(Borders(), five_abscissae);
  EXPECT_EQ(local_.GetY(0.5), 0.5);
  EXPECT_EQ(local_.GetY(2.0), 14.0);
  EXPECT_EQ(local_.GetDerivedY(2.0), 13.0);
  EXPECT_EQ(local_.GetCoeffs(2.0)[1], 13.0);
  EXPECT_EQ(local_.GetDerived2Y(2.0), 0.0);
}

TEST_F(LocalInterpolationTest, ABorderBelongsToTheLowerPiece) {
  Init(2);
  EXPECT_EQ(PieceOf(3.0), 1);
  EXPECT_EQ(local_.GetDerivedY(3.0), 13.0);
  EXPECT_EQ(PieceOf(std::nextafter(3.0, 4.0)), 2);
}

TEST_F(LocalInterpolationTest, TheEndPiecesServeEverythingBeyond) {
  Init(2);
  EXPECT_EQ(PieceOf(-1e300), 0);
  EXPECT_EQ(PieceOf(1e300), 3);
  EXPECT_EQ(PieceOf(std::numeric_limits<double>::quiet_NaN()), 3);
  EXPECT_EQ(local_.GetY(-2.0), -2.0);
  EXPECT_EQ(local_.GetY(10.0), 512.0 + 2.0 * 112.0);
}

TEST_F(LocalInterpolationTest, OddRunsHandOverHalfWayBetweenTheirMiddles) {
  Init(3);
  EXPECT_EQ(Borders(), (std::vector<double>{0.0, 2.0, 3.5, 6.0}));
  EXPECT_EQ(PieceOf(7.9), 2) << "beyond the last piece's stop";
  // Through 1, 3 and 4: x^3 - (x - 1)(x - 3)(x - 4) = 8 x^2 - 19 x + 12.
  EXPECT_DOUBLE_EQ(local_.GetY(2.5), 14.5);
  EXPECT_DOUBLE_EQ(local_.GetDerivedY(2.5), 21.0);
  EXPECT_DOUBLE_EQ(local_.GetDerived2Y(2.5), 16.0);
}

TEST_F(LocalInterpolationTest, EvenRunsHandOverAtThePointBetweenTheirMiddles) {
  Init(4);
  EXPECT_EQ(Borders(), (std::vector<double>{0.0, 3.0, 4.0}));
  for (const double x : {-1.0, 2.0, 3.5, 6.0}) {
    EXPECT_NEAR(local_.GetY(x), Cube(x), 1e-12);
  }
}

TEST_F(LocalInterpolationTest, OnePointAPieceMakesSteps) {
  Init(1);
  EXPECT_EQ(Borders(), (std::vector<double>{0.0, 0.5, 2.0, 3.5, 6.0, 8.0}));
  EXPECT_EQ(local_.GetY(0.4), 0.0);
  EXPECT_EQ(local_.GetY(3.4), 27.0);
  EXPECT_EQ(local_.GetY(100.0), 512.0);
}

TEST_F(LocalInterpolationTest, ARunLongerThanAllPointsIsCutWithAWarning) {
  Init(9);
  EXPECT_TRUE(log_.Has("WARN  : LOCAL_INTERPOLATION: change support_point_count from 9 to 5"))
      << log_.Text();
  EXPECT_EQ(Borders(), (std::vector<double>{0.0, 8.0}));
  EXPECT_NEAR(local_.GetY(6.0), Cube(6.0), 1e-10);
}

TEST_F(LocalInterpolationTest, SetUpLogsItsPieces) {
  Init(3);
  const std::vector<std::string> expected = {
      "PARAM : LOCAL_INTERPOLATION: polynom count; 3",
      "PARAM : idx_start=0 idx_stop=2 t_start=0.000000 t_stop=2.000000",
      "PARAM : idx_start=1 idx_stop=3 t_start=2.000000 t_stop=3.500000",
      "PARAM : idx_start=2 idx_stop=4 t_start=3.500000 t_stop=6.000000"};
  EXPECT_EQ(log_.Lines(), expected);
}

TEST_F(LocalInterpolationTest, InitSupportBuildsTheSamePiecesAgain) {
  Init(2);
  local_.SetSupportPointCount(3);
  local_.InitSupport(points_.Array());
  EXPECT_EQ(Borders(), (std::vector<double>{0.0, 2.0, 3.5, 6.0}));
  EXPECT_DOUBLE_EQ(local_.GetY(2.5), 14.5);
}

TEST_F(LocalInterpolationTest, WithoutPointsOrSupportItIsRefused) {
  EXPECT_THROW(local_.GetY(1.0), ERROR_ALGORITHM);
  EXPECT_TRUE(log_.Has("ALARM : LOCAL_INTERPOLATION: evaluated before its set-up"));
  EXPECT_THROW(Init(0), ERROR_ALGORITHM);
  ARRAY<POINT<double>> none;
  local_.SetSupportPointCount(2);
  EXPECT_THROW(local_.Init(none), ERROR_ALGORITHM);
}

TEST(LocalInterpolationOptionTest, IsHandedToEveryPolynomialBeforeItsSetUp) {
  struct WITH_OPTION : POLYNOM<double> {
    void SetOption(int option) override { given = Degree() < 0 ? option : -1; }
    int given = 0;
  };
  const LOG_CAPTURE log;
  const SUPPORT_POINTS points(five_abscissae, Cube);
  LOCAL_INTERPOLATION<double, WITH_OPTION, POINT<double>> local;
  local.SetOption(7);
  local.SetSupportPointCount(2);
  local.Init(points.Array());
  for (int k = 0; k < local.PieceCount(); ++k) {
    EXPECT_EQ(local.Piece(k).polynom.given, 7);
  }
}

}  // namespace
