#include "picture/figure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace {

constexpr COLOUR magenta{255, 0, 255};
constexpr COLOUR orange{255, 128, 0};

/// Colours that nothing else in a picture has, for values that no colour bar shows.
COLOUR MarkerMap(double position) {
  if (position == 0.111) {
    return magenta;
  }
  return position == 0.222 ? orange : white;
}

/// A cell of magenta, one without a value below it, and two of orange to their right.
FIGURE MarkerFigure() {
  const COLOUR_SCALE scale{0.0, 1.0, MarkerMap, "value", {{0.5, "half"}}};
  FIGURE figure{"title", "", GRID<double>(2, 2), 2, 2, 300, 200, scale};
  figure.values.Cells() = {0.111, 0.222, NAN, 0.222};
  return figure;
}

/// The pixels of one colour: how many, and the box around them.
struct COLOUR_AREA {
  int count = 0;
  int left = 0;
  int right = 0;
  int top = 0;
  int bottom = 0;
};

COLOUR_AREA AreaOf(const CANVAS& canvas, COLOUR colour) {
  COLOUR_AREA area;
  for (int y = 0; y < canvas.Height(); ++y) {
    for (int x = 0; x < canvas.Width(); ++x) {
      if (canvas.Pixel(x, y) == colour) {
        area.left = area.count == 0 ? x : std::min(area.left, x);
        area.top = area.count == 0 ? y : area.top;
        area.right = std::max(area.right, x);
        area.bottom = y;
        ++area.count;
      }
    }
  }
  return area;
}

TEST(FigureTest, ShowsTheCellsAtTheWantedSize) {
  const CANVAS canvas = Draw(MarkerFigure());
  const COLOUR_AREA upper_left = AreaOf(canvas, magenta);
  const COLOUR_AREA right = AreaOf(canvas, orange);
  EXPECT_EQ(upper_left.count, 150 * 100);
  EXPECT_EQ(right.count, 150 * 200);
  EXPECT_EQ(right.left, upper_left.right + 1);
  EXPECT_EQ(right.right - right.left, 149);
  EXPECT_EQ(right.top, upper_left.top);
  EXPECT_EQ(right.bottom - right.top, 199);

  const COLOUR no_data = canvas.Pixel(right.left - 1, right.bottom);
  EXPECT_NE(no_data, white);
  EXPECT_GT(AreaOf(canvas, no_data).count, 150 * 100) << "the legend shows the colour too";
}

TEST(FigureTest, WritingFailsWithTheNameOfTheFile) {
  try {
    Draw(MarkerFigure()).WritePng("/no/such/directory/figure.png");
    FAIL() << "no error";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find("/no/such/directory/figure.png"), std::string::npos);
  }
}

TEST(TicksTest, AreRoundAndInside) {
  const auto labels = [](double low, double high, double smallest_step) {
    std::string all;
    for (const TICK& tick : RoundTicks(low, high, smallest_step)) {
      all += tick.label + " ";
    }
    return all;
  };
  EXPECT_EQ(labels(0.0, 499.0, 70.0), "0 100 200 300 400 ");
  EXPECT_EQ(labels(0.0, 3.0, 1.0), "0 1 2 3 ");
  EXPECT_EQ(labels(0.0, 0.0, 1.0), "0 ");
  EXPECT_EQ(labels(-0.55, 0.42, 0.13), "-0.4 -0.2 0.0 0.2 0.4 ");
  EXPECT_EQ(labels(1e6, 1.1e6, 21000.0), "1000000 1050000 1100000 ");
}

}  // namespace
