#include "picture/figure.h"

#include <gd.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <stdexcept>

#include "support/temporary_directory.h"

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

FIGURE MarkerFigure(int width, int height, const std::string& title) {
  FIGURE figure{title,
                "",
                GRID<double>(2, 2),
                2,
                2,
                width,
                height,
                {0.0, 1.0, MarkerMap, "value", {{0.5, "half"}}}};
  figure.values.Cells() = {0.111, 0.222, 0.333, 0.222};
  return figure;
}

struct IMAGE_DELETER {
  void operator()(gdImage* image) const { gdImageDestroy(image); }
};
using IMAGE = std::unique_ptr<gdImage, IMAGE_DELETER>;

IMAGE ReadPng(const std::string& path) {
  std::string bytes = ReadFile(path);
  return IMAGE(gdImageCreateFromPngPtr(static_cast<int>(bytes.size()), bytes.data()));
}

/// The pixels of one colour: how many, and the box around them.
struct COLOUR_AREA {
  int count = 0;
  int left = std::numeric_limits<int>::max();
  int right = -1;
  int top = std::numeric_limits<int>::max();
  int bottom = -1;
};

COLOUR_AREA AreaOf(const gdImage& image, COLOUR colour) {
  COLOUR_AREA area;
  for (int y = 0; y < image.sy; ++y) {
    for (int x = 0; x < image.sx; ++x) {
      if (image.tpixels[y][x] == gdTrueColor(colour.red, colour.green, colour.blue)) {
        ++area.count;
        area.left = std::min(area.left, x);
        area.right = std::max(area.right, x);
        area.top = std::min(area.top, y);
        area.bottom = std::max(area.bottom, y);
      }
    }
  }
  return area;
}

std::vector<std::string> Labels(const std::vector<TICK>& ticks) {
  std::vector<std::string> labels(ticks.size());
  std::transform(ticks.begin(), ticks.end(), labels.begin(),
                 [](const TICK& tick) { return tick.label; });
  return labels;
}

TEST(FigureTest, ShowsTheCellsAtTheWantedSize) {
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.File("figure.png");
  Draw(MarkerFigure(300, 200, "title")).WritePng(path);

  const IMAGE image = ReadPng(path);
  ASSERT_TRUE(image);
  const COLOUR_AREA upper_left = AreaOf(*image, magenta);
  const COLOUR_AREA right = AreaOf(*image, orange);
  EXPECT_EQ(upper_left.count, 150 * 100);
  EXPECT_EQ(right.count, 150 * 200);
  EXPECT_EQ(right.left, upper_left.right + 1);
  EXPECT_EQ(right.right - right.left, 149);
  EXPECT_EQ(right.top, upper_left.top);
  EXPECT_EQ(right.bottom - right.top, 199);
}

TEST(FigureTest, PictureGrowsWithImageAndTitle) {
  const CANVAS small = Draw(MarkerFigure(300, 200, "title"));
  const CANVAS large = Draw(MarkerFigure(1300, 700, "title"));
  EXPECT_EQ(large.Width() - small.Width(), 1000);
  EXPECT_EQ(large.Height() - small.Height(), 500);

  const std::string long_title(60, 'W');
  EXPECT_GT(Draw(MarkerFigure(1, 1, long_title)).Width(), TextWidth(FONT::TITLE, long_title));
}

TEST(FigureTest, CellsWithoutValueHaveTheirOwnColour) {
  FIGURE figure = MarkerFigure(300, 200, "title");
  figure.values.At(0, 1) = std::numeric_limits<double>::quiet_NaN();
  const TEMPORARY_DIRECTORY directory;
  const std::string path = directory.File("figure.png");

  const CANVAS canvas = Draw(figure);
  canvas.WritePng(path);

  const IMAGE image = ReadPng(path);
  ASSERT_TRUE(image);
  const COLOUR_AREA right = AreaOf(*image, orange);
  const COLOUR no_data = canvas.Pixel(right.left - 1, right.bottom);
  EXPECT_NE(no_data, white);
  EXPECT_GT(AreaOf(*image, no_data).count, 150 * 100) << "the legend shows the colour too";
}

TEST(FigureTest, WritingFailsWithTheNameOfTheFile) {
  try {
    Draw(MarkerFigure(10, 10, "title")).WritePng("/no/such/directory/figure.png");
    FAIL() << "no error";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find("/no/such/directory/figure.png"), std::string::npos);
  }
}

TEST(TicksTest, AreRoundAndInside) {
  EXPECT_EQ(Labels(RoundTicks(0.0, 499.0, 70.0)),
            (std::vector<std::string>{"0", "100", "200", "300", "400"}));
  EXPECT_EQ(Labels(RoundTicks(0.0, 3.0, 1.0)), (std::vector<std::string>{"0", "1", "2", "3"}));
  EXPECT_EQ(Labels(RoundTicks(0.0, 0.0, 1.0)), (std::vector<std::string>{"0"}));
  EXPECT_EQ(Labels(RoundTicks(-0.55, 0.42, 0.13)),
            (std::vector<std::string>{"-0.4", "-0.2", "0.0", "0.2", "0.4"}));
  EXPECT_EQ(Labels(RoundTicks(1e6, 1.1e6, 21000.0)),
            (std::vector<std::string>{"1000000", "1050000", "1100000"}));
}

TEST(ColourMapsTest, HaveTheRightEnds) {
  EXPECT_EQ(GreyMap(0.0), black);
  EXPECT_EQ(GreyMap(1.0), white);
  EXPECT_EQ(CyclicMap(0.0), CyclicMap(1.0));
  EXPECT_NE(CyclicMap(0.0), CyclicMap(0.5));
  EXPECT_EQ(SequentialMap(0.0), (COLOUR{68, 1, 84}));
  EXPECT_EQ(SequentialMap(1.0), (COLOUR{253, 231, 37}));
  EXPECT_EQ(TwoColourMap(0.0), TwoColourMap(0.49));
  EXPECT_EQ(TwoColourMap(0.5), TwoColourMap(1.0));
  EXPECT_NE(TwoColourMap(0.0), TwoColourMap(1.0));
}

TEST(ColourMapsTest, ChangeEvenly) {
  const auto luma = [](COLOUR colour) {
    return 0.2126 * colour.red + 0.7152 * colour.green + 0.0722 * colour.blue;
  };
  const auto distance = [](COLOUR a, COLOUR b) {
    return std::max(
        {std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
  };
  for (int i = 0; i < 100; ++i) {
    const double here = i / 100.0;
    const double next = (i + 1) / 100.0;
    EXPECT_GT(luma(SequentialMap(next)), luma(SequentialMap(here))) << here;
    EXPECT_LT(distance(CyclicMap(here), CyclicMap(next)), 16) << here;
    EXPECT_GT(distance(CyclicMap(here), CyclicMap(next)), 0) << here;
  }
}

}  // namespace
