#include "png/raster_figure.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <filesystem>
#include <stdexcept>

#include "png/png_command.h"
#include "tools/image_test.h"

namespace {

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

TEST_F(RasterFigureTest, MaskShowsASingleGap) {
  const RASTER_READER mask = Real(
      "m", 100, 50, [](int sample, int line) { return sample == 70 && line == 10 ? 0.0 : 255.0; },
      PIXEL_TYPE::U_INT_8);
  const FIGURE figure = MaskFigure(mask, {7, 5});
  EXPECT_EQ(std::count(figure.values.Cells().begin(), figure.values.Cells().end(), 0.0), 1);
  EXPECT_EQ(figure.values.At(4, 1), 0.0);
}

TEST_F(RasterFigureTest, SizeFollowsTheImageUnlessWanted) {
  const auto is = [](SIZE size, int width, int height) {
    return size.width == width && size.height == height;
  };
  EXPECT_TRUE(is(ShownSize(8000, 2000, {}), 800, 200));
  EXPECT_TRUE(is(ShownSize(300, 100, {}), 600, 200)) << "whole multiples";
  EXPECT_TRUE(is(ShownSize(1000000, 1, {}), 800, 1));
  EXPECT_TRUE(is(ShownSize(1, 1000000, {100, {}}), 100, largest_picture));
}

TEST_F(RasterFigureTest, RefusesRastersThatDoNotFit) {
  const RASTER_READER a = Complex("a", 4, 4, Ramp);
  const RASTER_READER smaller = Complex("b", 4, 3, Ramp);
  const RASTER_READER empty = Complex("e", 0, 0, Ramp);
  const RASTER_READER real = Real("r", 4, 4, [](int, int) { return 1.0; });

  EXPECT_THROW(InterferogramFigure(a, smaller, {}), std::invalid_argument);
  EXPECT_THROW(CoherenceFigure(a, real, {}), std::invalid_argument);
  EXPECT_THROW(PhaseFigure(real, {}), std::invalid_argument);
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
        "interferogram " + image + " " + image, "coherence " + image + " " + image}) {
    std::filesystem::remove(picture);
    CLI::App app;
    AddPngCommand(app);
    app.parse("png " + rasters + " " + picture + " --width 50 --title \"A title\"");
    EXPECT_EQ(ReadFile(picture).substr(1, 3), "PNG") << rasters;
  }
}

}  // namespace
