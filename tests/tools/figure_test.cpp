#include "picture/figure.h"

#include <gtest/gtest.h>

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

TEST(FigureTest, ShowsTheCellsAtTheWantedSize) {
  const CANVAS canvas = Draw(MarkerFigure());
  int left = 0;
  int top = 0;
  while (!(canvas.Pixel(left, top) == magenta)) {
    left = left + 1 < canvas.Width() ? left + 1 : 0;
    top += left == 0 ? 1 : 0;
    ASSERT_LT(top, canvas.Height());
  }
  const COLOUR no_data = canvas.Pixel(left, top + 100);
  EXPECT_NE(no_data, white);
  int shown_no_data = 0;
  for (int y = 0; y < canvas.Height(); ++y) {
    for (int x = 0; x < canvas.Width(); ++x) {
      const bool inside = x >= left && x < left + 300 && y >= top && y < top + 200;
      const bool on_the_right = inside && x >= left + 150;
      const COLOUR colour = canvas.Pixel(x, y);
      ASSERT_EQ(colour == orange, on_the_right) << x << ", " << y;
      ASSERT_EQ(colour == magenta, inside && !on_the_right && y < top + 100) << x << ", " << y;
      shown_no_data += colour == no_data ? 1 : 0;
    }
  }
  EXPECT_GT(shown_no_data, 150 * 100) << "the legend shows the colour too";
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
