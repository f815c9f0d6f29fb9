#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <filesystem>
#include <stdexcept>

#include "picture/figure.h"
#include "picture/multilook.h"
#include "picture/raster_figure.h"
#include "png/png_command.h"
#include "tools/image_test.h"

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
  FIGURE figure{"title", "", CELL_GRID<double>(2, 2), 2, 2, 300, 200, scale};
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

TEST(CanvasTest, LettersOfUtf8AreDrawnOneByOne) {
  const auto drawn = [](const std::string& text) {
    CANVAS canvas(60, 20);
    canvas.Text(30, 10, ALIGN::CENTRE, FONT::TITLE, text, black);
    return canvas.Png();
  };
  EXPECT_NE(drawn("\u00fc"), drawn("?")) << "u with two dots";
  EXPECT_NE(drawn("\u00fc"), drawn("u"));
  EXPECT_EQ(drawn("a\u65e5\u672c"), drawn("a??"));
  EXPECT_EQ(drawn("a\xfc"), drawn("a?")) << "is no UTF-8";
  EXPECT_EQ(TextWidth(FONT::TITLE, "Z\u00fcrich"), TextWidth(FONT::TITLE, "Zurich"));
}

TEST(FigureTest, WritingFailsWithTheNameOfTheFile) {
  for (const char* path : {"/no/such/directory/figure.png", "/dev/full"}) {
    try {
      Draw(MarkerFigure()).WritePng(path);
      ADD_FAILURE() << "no error";
    } catch (const std::runtime_error& error) {
      EXPECT_NE(std::string(error.what()).find(path), std::string::npos);
    }
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

/// An image whose pixel at (sample, line) has the power 1 + sample + 10 * line.
void FillPowers(std::int64_t line, std::span<PAIR_SUMS> pixels) {
  for (std::size_t sample = 0; sample < pixels.size(); ++sample) {
    const double power = 1.0 + static_cast<double>(sample) + 10.0 * static_cast<double>(line);
    pixels[sample] = PAIR_SUMS::Of(std::sqrt(power), 1.0);
  }
}

TEST(MultilookTest, DividesPixelsOnTheBorderOfTwoBoxes) {
  const CELL_GRID<PAIR_SUMS> grid = Multilook(FillPowers, 3, 3, 2, 2);

  EXPECT_NEAR(grid.At(0, 0).power_a, (1 + 0.5 * 2) + 0.5 * (11 + 0.5 * 12), 1e-12);
  EXPECT_NEAR(grid.At(1, 1).power_a, 0.5 * (0.5 * 12 + 13) + (0.5 * 22 + 23), 1e-12);
}

class RasterFigureTest : public IMAGE_TEST {
 protected:
  static VALUE Ramp(int sample, int line) { return std::polar(2.0, 0.1 * sample - 0.2 * line); }
};

TEST_F(RasterFigureTest, AmplitudeAveragesPowerAndLeavesGapsOut) {
  const RASTER_READER image = Complex("a", 4, 2, [](int sample, int line) {
    const VALUE pixels[2][4] = {{{std::nan(""), 1.0}, 0.0, 0.0, 0.0},
                                {{0.0, 6.0}, {0.0, 8.0}, 0.0, 0.0}};
    return pixels[line][sample];
  });

  const FIGURE figure = AmplitudeFigure(image, {2, 1});

  EXPECT_NEAR(figure.values.At(0, 0), 10.0 * std::log10(50.0), 1e-9);
  EXPECT_TRUE(std::isnan(figure.values.At(1, 0)));
}

TEST_F(RasterFigureTest, InterferogramAndCoherenceShowTheDifferenceOfAPair) {
  const RASTER_READER a = Complex("a", 30, 30, Ramp);
  const RASTER_READER turned = Complex("b", 30, 30, [](int sample, int line) {
    return Ramp(sample, line) * std::polar(0.5, -1.25);
  });
  const RASTER_READER alternating = Complex("c", 30, 30, [](int sample, int line) {
    return Ramp(sample, line) * (sample % 2 == 0 ? 1.0 : -1.0);
  });

  const FIGURE interferogram = InterferogramFigure(a, turned, {});
  EXPECT_EQ(interferogram.values.Columns(), 10);
  EXPECT_NEAR(interferogram.values.At(9, 3), 1.25, 1e-6);
  EXPECT_NEAR(CoherenceFigure(a, turned, {}).values.At(5, 5), 1.0, 1e-6);
  EXPECT_NEAR(CoherenceFigure(a, alternating, {600, 300}).values.At(0, 0), 1.0 / 5.0, 1e-6)
      << "3 of 5 samples agree";
}

TEST_F(RasterFigureTest, SizeFollowsTheImageUnlessWanted) {
  const auto is = [](SIZE size, int width, int height) {
    return size.width == width && size.height == height;
  };
  EXPECT_TRUE(is(ShownSize(8000, 2000, {}), 800, 200));
  EXPECT_TRUE(is(ShownSize(300, 100, {}), 600, 200)) << "whole multiples";
  EXPECT_TRUE(is(ShownSize(1000000, 1, {}), 800, 1));
  EXPECT_TRUE(is(ShownSize(1, 1000000, {100, {}}), 100, largest_picture));
  EXPECT_TRUE(is(ShownSize(2000, 8000, {{}, {}, RANGE_AZIMUTH<int>{4, 20}}), 500, 400));
}

TEST_F(RasterFigureTest, RefusesRastersThatDoNotFit) {
  const RASTER_READER a = Complex("a", 4, 4, Ramp);
  const RASTER_READER smaller = Complex("b", 4, 3, Ramp);
  const RASTER_READER empty = Complex("e", 0, 0, Ramp);
  const RASTER_READER real = Real("r", 4, 4, [](int, int) { return 1.0; });

  EXPECT_THROW(InterferogramFigure(a, smaller, {}), std::invalid_argument);
  EXPECT_THROW(CoherenceFigure(a, real, {}), std::invalid_argument);
  EXPECT_THROW(PhaseFigure(real, {}), std::invalid_argument);
  EXPECT_THROW(ValueFigure(a, {}), std::invalid_argument);
  EXPECT_THROW(MaskFigure(real, {}), std::invalid_argument);
  EXPECT_THROW(AmplitudeFigure(empty, {}), std::invalid_argument);
}

TEST_F(RasterFigureTest, CommandWritesEveryKind) {
  const std::string image = Complex("a.ras", 20, 20, Ramp).Path();
  const auto one = [](int, int) { return 1.0; };
  const std::string mask = Real("m.ras", 20, 20, one, PIXEL_TYPE::U_INT_8).Path();
  const std::string picture = Path("picture.png");
  for (const std::string& rasters :
       {"amplitude " + image, "phase " + image, "mask " + mask,
        "interferogram " + image + " " + image, "coherence " + image + " " + image,
        "pair --looks 2,4 " + image + " " + image}) {
    std::filesystem::remove(picture);
    CLI::App app;
    AddPngCommand(app);
    app.parse("png " + rasters + " " + picture + " --width 50 --title \"A title\"");
    EXPECT_EQ(ReadFile(picture).substr(1, 3), "PNG") << rasters;
  }
}

}  // namespace
