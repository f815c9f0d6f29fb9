#include "mapping/matrix_interpolation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "base/error_exception.h"
#include "support/log_capture.h"

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// A matrix of nodes with its row table.
class NODES {
 public:
  template <class VALUE_AT>
  NODES(unsigned width, unsigned height, VALUE_AT value_at) : width_(width), height_(height) {
    for (unsigned line = 0; line < height; ++line) {
      for (unsigned column = 0; column < width; ++column) {
        values_.push_back(static_cast<float>(value_at(column, line)));
      }
    }
    for (unsigned line = 0; line < height; ++line) {
      rows_.push_back(values_.data() + std::size_t{line} * width);
    }
  }
  NODES(const NODES&) = delete;
  NODES& operator=(const NODES&) = delete;
  ~NODES() = default;

  static NODES Random(unsigned width, unsigned height) {
    std::mt19937 random(17);
    std::uniform_real_distribution<float> value(-50.0F, 50.0F);
    return {width, height, [&](unsigned, unsigned) { return value(random); }};
  }

  double At(std::size_t column, std::size_t line) const { return values_[line * width_ + column]; }

  void InitInterpolation(MATRIX_INTERPOLATION<float>& interpolation, unsigned degree) const {
    interpolation.Init(rows_.data(), width_, height_, degree);
  }

 private:
  unsigned width_;
  unsigned height_;
  std::vector<float> values_;
  std::vector<const float*> rows_;
};

class MatrixInterpolationTest : public testing::Test {
 protected:
  double At(double column, double line) const { return interpolation_.GetValue(line, column); }

  /// Whether a position is inside a grid whose nodes are all of one value.
  bool IsInside(double column, double line) const { return At(column, line) != 0.0; }

  LOG_CAPTURE log_;
  MATRIX_INTERPOLATION<float> interpolation_;
};

double One(unsigned, unsigned) {
  return 1.0;
}

TEST_F(MatrixInterpolationTest, BilinearIsExactToTheLastBit) {
  const NODES nodes = NODES::Random(9, 7);
  nodes.InitInterpolation(interpolation_, 2);
  std::mt19937 random(3);
  std::uniform_real_distribution<double> column(0.0, 8.0);
  std::uniform_real_distribution<double> line(0.0, 6.0);
  for (int trial = 0; trial < 5000; ++trial) {
    const double x = column(random);
    const double y = line(random);
    const auto i = static_cast<std::size_t>(std::floor(x));
    const auto j = static_cast<std::size_t>(std::floor(y));
    const double a = x - std::floor(x);
    const double b = y - std::floor(y);
    const double upper = nodes.At(i + 1, j) * a + nodes.At(i, j) * (1.0 - a);
    const double lower = nodes.At(i + 1, j + 1) * a + nodes.At(i, j + 1) * (1.0 - a);
    ASSERT_EQ(At(x, y), (1.0 - b) * upper + lower * b) << x << ' ' << y;
  }
}

TEST_F(MatrixInterpolationTest, EveryDegreeReturnsItsInnerNodesExactly) {
  const NODES nodes = NODES::Random(8, 9);
  for (const unsigned degree : {1U, 2U, 4U, 6U}) {
    nodes.InitInterpolation(interpolation_, degree);
    for (unsigned line = 2; line < 6; ++line) {
      for (unsigned column = 2; column < 5; ++column) {
        EXPECT_EQ(At(column, line), nodes.At(column, line)) << degree;
      }
    }
  }
}

TEST_F(MatrixInterpolationTest, BilinearEndsAtTheLastColumnAndLine) {
  const NODES nodes(5, 4, One);
  nodes.InitInterpolation(interpolation_, 2);
  EXPECT_TRUE(IsInside(0.0, 0.0));
  EXPECT_TRUE(IsInside(-0.0, -0.0));
  EXPECT_TRUE(IsInside(std::nextafter(4.0, 0.0), std::nextafter(3.0, 0.0)));
  EXPECT_FALSE(IsInside(4.0, 1.0));
  EXPECT_FALSE(IsInside(1.0, 3.0));
  EXPECT_FALSE(IsInside(-1e-300, 1.0));
  EXPECT_FALSE(IsInside(1.0, -0.25));
}

TEST_F(MatrixInterpolationTest, ASingleColumnOrLineHasNoInsideForTheBilinearDegree) {
  const NODES column(1, 5, One);
  column.InitInterpolation(interpolation_, 2);
  EXPECT_FALSE(IsInside(0.0, 2.0));
  const NODES line(5, 1, One);
  line.InitInterpolation(interpolation_, 2);
  EXPECT_FALSE(IsInside(2.0, 0.0));
}

TEST_F(MatrixInterpolationTest, NearestRoundsHalvesUp) {
  const NODES nodes(4, 3, [](unsigned column, unsigned line) { return 1 + column + 10 * line; });
  nodes.InitInterpolation(interpolation_, 1);
  EXPECT_EQ(At(-0.5, -0.5), 1.0);
  EXPECT_EQ(At(0.5, 0.49), 2.0);
  EXPECT_EQ(At(1.49, 0.5), 12.0);
  EXPECT_EQ(At(std::nextafter(3.5, 0.0), std::nextafter(2.5, 0.0)), 24.0);
  EXPECT_EQ(At(3.5, 1.0), 0.0);
  EXPECT_EQ(At(1.0, 2.5), 0.0);
  EXPECT_EQ(At(std::nextafter(-0.5, -1.0), 1.0), 0.0);
}

TEST_F(MatrixInterpolationTest, NearestStaysWithinASingleNode) {
  const NODES nodes(1, 1, One);
  nodes.InitInterpolation(interpolation_, 1);
  const double almost_half = std::nextafter(0.5, 0.0);
  ASSERT_EQ(almost_half + 0.5, 1.0);
  EXPECT_EQ(At(almost_half, almost_half), 1.0);
}

TEST_F(MatrixInterpolationTest, HigherDegreesReproducePolynomials) {
  for (const unsigned degree : {4U, 6U}) {
    const int power = static_cast<int>(degree) - 1;
    const auto polynomial = [power](double x, double y) {
      return std::pow(x / 8.0 - 0.5, power) - 2.0 * std::pow(y / 8.0 - 0.7, power) + x * y / 64.0;
    };
    const NODES nodes(9, 9, polynomial);
    nodes.InitInterpolation(interpolation_, degree);
    for (int step = 0; step < 128; ++step) {
      const double x = 3.0 + step / 128.0;
      const double y = 4.0 + (127 - step) / 128.0;
      // Nodes and weights have single precision.
      EXPECT_NEAR(At(x, y), polynomial(x, y), 2e-6) << degree;
      EXPECT_NEAR(At(y, x), polynomial(y, x), 2e-6) << degree;
    }
  }
}

TEST_F(MatrixInterpolationTest, HigherDegreesQuantiseTheFractionDownwards) {
  const NODES nodes = NODES::Random(10, 10);
  for (const unsigned degree : {4U, 6U}) {
    nodes.InitInterpolation(interpolation_, degree);
    const double step = 1.0 / 128.0;
    EXPECT_EQ(At(4.0 + 5.999 * step, 3.0 + 0.999 * step), At(4.0 + 5.0 * step, 3.0));
    EXPECT_EQ(At(std::nextafter(5.0, 0.0), 4.5), At(5.0 - step, 4.5));
    EXPECT_NE(At(4.0 + 6.0 * step, 3.0), At(4.0 + 5.0 * step, 3.0));
  }
}

TEST_F(MatrixInterpolationTest, HigherDegreesNeedAllTheirNodes) {
  const NODES nodes(12, 9, One);
  for (const unsigned degree : {4U, 6U}) {
    nodes.InitInterpolation(interpolation_, degree);
    const double half = degree * 0.5;
    EXPECT_TRUE(IsInside(half - 1.0, half - 1.0));
    EXPECT_TRUE(IsInside(std::nextafter(12.0 - half, 0.0), std::nextafter(9.0 - half, 0.0)));
    EXPECT_FALSE(IsInside(std::nextafter(half - 1.0, 0.0), 4.0));
    EXPECT_FALSE(IsInside(4.0, std::nextafter(half - 1.0, 0.0)));
    EXPECT_FALSE(IsInside(12.0 - half, 4.0));
    EXPECT_FALSE(IsInside(4.0, 9.0 - half));
  }
}

TEST_F(MatrixInterpolationTest, PositionsThatAreNoNumbersOrHugeAreOutsideForEveryDegree) {
  const NODES nodes(9, 9, One);
  for (const unsigned degree : {1U, 2U, 4U, 6U}) {
    nodes.InitInterpolation(interpolation_, degree);
    for (const double position : {nan, infinity, -infinity, 1e300, -1e300, 4294967298.0}) {
      EXPECT_FALSE(IsInside(position, 4.0)) << degree << ' ' << position;
      EXPECT_FALSE(IsInside(4.0, position)) << degree << ' ' << position;
    }
  }
}

TEST_F(MatrixInterpolationTest, OtherDegreesAreRefused) {
  EXPECT_THROW(At(1.0, 1.0), ERROR_UNHANDLED_CASE) << "before set-up";
  EXPECT_TRUE(log_.Has("ALARM : interpolation degree 0 not handled")) << log_.Text();
  const NODES nodes(9, 9, One);
  for (const unsigned degree : {3U, 5U, 8U}) {
    nodes.InitInterpolation(interpolation_, degree);
    EXPECT_THROW(At(4.0, 4.0), ERROR_UNHANDLED_CASE);
    EXPECT_TRUE(
        log_.Has("ALARM : interpolation degree " + std::to_string(degree) + " not handled"));
  }
}

TEST_F(MatrixInterpolationTest, SetUpPrintsItsOverview) {
  const NODES nodes(5, 3, One);
  nodes.InitInterpolation(interpolation_, 2);
  const std::vector<std::string> overview = {
      "INFO  : MATRIX_INTERPOLATION: Overview of initialized parameters:",
      "INFO  : --------------------------------------------------",
      "INFO  : rg_size: ........... 5", "INFO  : az_size: ........... 3",
      "INFO  : degree: ............ 2"};
  EXPECT_EQ(log_.Lines(), overview);
}

TEST_F(MatrixInterpolationTest, CanBeSetUpAgain) {
  const NODES large(12, 12, One);
  large.InitInterpolation(interpolation_, 6);
  const NODES small(5, 5, [](unsigned column, unsigned) { return column; });
  small.InitInterpolation(interpolation_, 4);
  EXPECT_DOUBLE_EQ(At(1.5, 2.0), 1.5);
  small.InitInterpolation(interpolation_, 2);
  EXPECT_EQ(At(0.25, 0.0), 0.25);
  EXPECT_FALSE(IsInside(6.0, 6.0));
}

TEST(BaseMatrixInterpolationTest, RefusesToEvaluate) {
  class ABSTRACT : public BASE_MATRIX_INTERPOLATION {};
  const LOG_CAPTURE log;
  EXPECT_THROW(ABSTRACT().GetValue(0.0, 0.0), ERROR_NOT_IMPLEMENTED);
  EXPECT_TRUE(log.Has(
      "ALARM : BASE_MATRIX_INTERPOLATION::GetValue() shall never been called, but GetValue() of "
      "derived classes only !"))
      << log.Text();
}

}  // namespace
