#include "mapping/matrix_interpolation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "base/error_exception.h"
#include "support/grid.h"
#include "support/log_capture.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

class MatrixInterpolationTest : public testing::Test {
 protected:
  void Init(const GRID<float>& nodes, unsigned degree) {
    nodes_ = nodes;
    rows_.clear();
    for (int line = 0; line < nodes.height; ++line) {
      rows_.push_back(&nodes_.values[static_cast<std::size_t>(line * nodes.width)]);
    }
    interpolation_.Init(rows_.data(), static_cast<unsigned>(nodes.width),
                        static_cast<unsigned>(nodes.height), degree);
  }

  double At(double column, double line) const { return interpolation_.GetValue(line, column); }

  LOG_CAPTURE log_;
  MATRIX_INTERPOLATION<float> interpolation_;
  GRID<float> nodes_;
  std::vector<const float*> rows_;
};

TEST_F(MatrixInterpolationTest, HigherDegreesAreExactForCubicsAtFractionsQuantisedDownwards) {
  const auto cubic = [](double x, double y) {
    return (x * x - 7.0 * x) * x + x * y * y - y * y * y;
  };
  GRID<float> nodes(12, 9);
  for (int i = 0; i < 12 * 9; ++i) {
    nodes.At(i % 12, i / 12) = static_cast<float>(cubic(i % 12, i / 12));
  }
  std::mt19937 random(17);
  for (const unsigned degree : {6U, 4U}) {
    Init(nodes, degree);
    for (int trial = 0; trial < 1000; ++trial) {
      const double x = std::uniform_real_distribution<double>(2.0, 9.0)(random);
      const double y = std::uniform_real_distribution<double>(2.0, 6.0)(random);
      ASSERT_NEAR(At(x, y), cubic(std::floor(x * 128.0) / 128.0, std::floor(y * 128.0) / 128.0),
                  1e-3)
          << degree << ": " << x << ' ' << y;
    }
  }
}

TEST_F(MatrixInterpolationTest, EveryDegreeIsZeroOutsideTheGridThatItsNodesCover) {
  const struct {
    unsigned degree;
    double first;
    double end_before_size;  ///< of the half-open range of positions
  } cases[] = {{1, -0.5, 0.5}, {2, 0.0, 1.0}, {4, 1.0, 2.0}, {6, 2.0, 3.0}};
  for (const auto& [degree, first, end_before_size] : cases) {
    SCOPED_TRACE(degree);
    Init(GRID<float>(12, 9, 1.0F), degree);
    const double end_column = 12.0 - end_before_size;
    const double end_line = 9.0 - end_before_size;
    EXPECT_EQ(At(first, first), 1.0);
    EXPECT_NEAR(At(std::nextafter(end_column, 0.0), std::nextafter(end_line, 0.0)), 1.0, 1e-6);
    EXPECT_EQ(At(end_column, 4.0), 0.0);
    EXPECT_EQ(At(4.0, end_line), 0.0);
    for (const double position : {std::nextafter(first, -1.0), infinity, -infinity, 1e300, -1e300,
                                  4294967298.0, std::nan("")}) {
      EXPECT_EQ(At(position, 4.0), 0.0) << position;
      EXPECT_EQ(At(4.0, position), 0.0) << position;
    }
  }
  Init(GRID<float>(1, 5, 1.0F), 2);
  EXPECT_EQ(At(0.0, 2.0), 0.0) << "a single column has no inside";
}

TEST_F(MatrixInterpolationTest, NearestRoundsHalvesUpWithinTheGrid) {
  GRID<float> nodes(2, 2);
  nodes.values = {1.0F, 2.0F, 3.0F, 4.0F};
  Init(nodes, 1);
  EXPECT_EQ(At(0.5, 0.49), 2.0);
  EXPECT_EQ(At(0.49, 0.5), 3.0);
  Init(GRID<float>(1, 1, 5.0F), 1);
  const double almost_half = std::nextafter(0.5, 0.0);
  ASSERT_EQ(almost_half + 0.5, 1.0);
  EXPECT_EQ(At(almost_half, almost_half), 5.0);
}

TEST_F(MatrixInterpolationTest, OtherDegreesAreRefused) {
  EXPECT_THROW(At(1.0, 1.0), ERROR_UNHANDLED_CASE) << "before set-up";
  Init(GRID<float>(9, 9, 1.0F), 3);
  EXPECT_THROW(At(4.0, 4.0), ERROR_UNHANDLED_CASE);
  EXPECT_TRUE(log_.Has("ALARM : interpolation degree 3 not handled"));
  EXPECT_THROW(interpolation_.BASE_MATRIX_INTERPOLATION::GetValue(4.0, 4.0), ERROR_NOT_IMPLEMENTED);
}

}  // namespace
