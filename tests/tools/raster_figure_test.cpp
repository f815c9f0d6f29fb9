#include "png/raster_figure.h"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <complex>
#include <filesystem>
#include <stdexcept>

#include "common/raster_writer.h"
#include "png/png_command.h"
#include "support/temporary_directory.h"

namespace {

using std::complex;

class RasterFigureTest : public testing::Test {
 protected:
  RASTER_READER Complex(const char* name, int samples, int lines,
                        complex<double> (*pixel)(int sample, int line)) {
    WriteRaster(directory_.File(name), samples, lines, PIXEL_TYPE::C_FLT_6,
                [pixel](std::int64_t line, std::span<complex<double>> values) {
                  for (std::size_t sample = 0; sample < values.size(); ++sample) {
                    values[sample] = pixel(static_cast<int>(sample), static_cast<int>(line));
                  }
                });
    return RASTER_READER(directory_.File(name));
  }
  RASTER_READER Real(const char* name, int samples, int lines, PIXEL_TYPE type,
                     double (*pixel)(int sample, int line)) {
    WriteRealRaster(directory_.File(name), samples, lines, type,
                    [pixel](std::int64_t line, std::span<double> values) {
                      for (std::size_t sample = 0; sample < values.size(); ++sample) {
                        values[sample] = pixel(static_cast<int>(sample), static_cast<int>(line));
                      }
                    });
    return RASTER_READER(directory_.File(name));
  }

  TEMPORARY_DIRECTORY directory_;
};

complex<double> Ramp(int sample, int line) {
  return std::polar(2.0, 0.1 * sample - 0.2 * line);
}
complex<double> Constant(int, int) {
  return 3.0;
}

TEST_F(RasterFigureTest, AmplitudeAveragesPowerAndLeavesGapsOut) {
  const RASTER_READER image = Complex("a", 4, 2, [](int sample, int line) {
    const complex<double> pixels[2][4] = {{{std::nan(""), 1.0}, 0.0, 0.0, 0.0},
                                          {{0.0, 6.0}, {0.0, 8.0}, 0.0, 0.0}};
    return pixels[line][sample];
  });

  const FIGURE figure = AmplitudeFigure(image, {2, 1});

  EXPECT_NEAR(figure.values.At(0, 0), 10.0 * std::log10(50.0), 1e-9);
  EXPECT_TRUE(std::isnan(figure.values.At(1, 0)));
  EXPECT_LT(figure.scale.low, figure.values.At(0, 0));
  EXPECT_GT(figure.scale.high, figure.values.At(0, 0));
}

TEST_F(RasterFigureTest, AmplitudeScaleSpansAllButTheOutermostValues) {
  const RASTER_READER image = Complex("a", 1001, 1, [](int sample, int) {
    return complex<double>(std::pow(10.0, sample / 200.0), 0.0);
  });

  const FIGURE figure = AmplitudeFigure(image, {1001, 1});

  EXPECT_NEAR(figure.scale.low, 1.0, 1e-5);
  EXPECT_NEAR(figure.scale.high, 99.0, 1e-5);
}

TEST_F(RasterFigureTest, PhaseIsThatOfTheComplexMean) {
  const RASTER_READER image = Complex("a", 2, 2, [](int sample, int line) {
    return sample == 0 ? complex<double>(-1.0, line == 0 ? 0.5 : -0.4) : complex<double>(0.0);
  });

  const FIGURE figure = PhaseFigure(image, {2, 1});

  EXPECT_NEAR(figure.values.At(0, 0), std::atan2(0.1, -2.0), 1e-6);
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
  const FIGURE full = CoherenceFigure(a, turned, {});
  const FIGURE none = CoherenceFigure(a, alternating, {600, 300});

  EXPECT_EQ(interferogram.values.Columns(), 10);
  EXPECT_NEAR(interferogram.values.At(9, 3), 1.25, 1e-6);
  EXPECT_EQ(full.values.Columns(), 6);
  EXPECT_NEAR(full.values.At(5, 5), 1.0, 1e-6);
  EXPECT_NEAR(none.values.At(0, 0), 1.0 / 5.0, 1e-6) << "3 of 5 samples agree";
}

TEST_F(RasterFigureTest, MaskShowsASingleGap) {
  const RASTER_READER mask = Real("m", 100, 50, PIXEL_TYPE::U_INT_8, [](int sample, int line) {
    return sample == 70 && line == 10 ? 0.0 : 255.0;
  });

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
  EXPECT_TRUE(is(ShownSize(5000, 25000, {400, {}}), 400, 2000));
  EXPECT_TRUE(is(ShownSize(5000, 25000, {{}, 400}), 80, 400));
  EXPECT_TRUE(is(ShownSize(5000, 25000, {640, 480}), 640, 480));
  EXPECT_TRUE(is(ShownSize(1000000, 1, {}), 800, 1));
  EXPECT_TRUE(is(ShownSize(1, 1000000, {100, {}}), 100, largest_picture));
}

TEST_F(RasterFigureTest, RefusesRastersThatDoNotFit) {
  const RASTER_READER a = Complex("a", 4, 4, Ramp);
  const RASTER_READER smaller = Complex("b", 4, 3, Ramp);
  const RASTER_READER empty = Complex("e", 0, 0, Ramp);
  const RASTER_READER real = Real("r", 4, 4, PIXEL_TYPE::FLT_6, [](int, int) { return 1.0; });

  EXPECT_THROW(InterferogramFigure(a, smaller, {}), std::invalid_argument);
  EXPECT_THROW(CoherenceFigure(a, real, {}), std::invalid_argument);
  EXPECT_THROW(PhaseFigure(real, {}), std::invalid_argument);
  EXPECT_THROW(MaskFigure(real, {}), std::invalid_argument);
  EXPECT_THROW(AmplitudeFigure(empty, {}), std::invalid_argument);
}

TEST_F(RasterFigureTest, CommandWritesEveryKind) {
  Complex("a.ras", 20, 20, Ramp);
  Complex("b.ras", 20, 20, Constant);
  Real("m.ras", 20, 20, PIXEL_TYPE::U_INT_8, [](int, int) { return 1.0; });
  const std::string picture = directory_.File("picture.png");
  const std::pair<const char*, std::vector<const char*>> kinds[] = {
      {"amplitude", {"a.ras"}},
      {"phase", {"a.ras"}},
      {"mask", {"m.ras"}},
      {"interferogram", {"a.ras", "b.ras"}},
      {"coherence", {"a.ras", "b.ras"}}};

  for (const auto& [kind, rasters] : kinds) {
    std::filesystem::remove(picture);
    std::vector<std::string> arguments = {"png", kind};
    for (const char* raster : rasters) {
      arguments.push_back(directory_.File(raster));
    }
    arguments.insert(arguments.end(), {picture, "--width", "50", "--title", "A title"});
    CLI::App app;
    AddPngCommand(app);
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    EXPECT_EQ(ReadFile(picture).substr(1, 3), "PNG") << kind;
  }
}

}  // namespace
