#include "compare/comparison.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "common/raster_writer.h"
#include "scene/random.h"
#include "support/temporary_directory.h"

namespace {

using VALUE = std::complex<double>;

constexpr std::int64_t side = 64;

class COMPARISONS : public testing::Test {
 protected:
  /// A raster whose pixels are `pixel(line, sample)`.
  template <class PIXEL>
  RASTER_READER Make(const char* name, PIXEL pixel) const {
    const std::string path = directory_.File(name);
    WriteRaster(path, side, side, PIXEL_TYPE::C_FLT_6,
                [&](std::int64_t line, std::span<VALUE> values) {
                  for (std::size_t sample = 0; sample < values.size(); ++sample) {
                    values[sample] = pixel(line, static_cast<std::int64_t>(sample));
                  }
                });
    return RASTER_READER(path);
  }

  static VALUE Speckle(std::uint64_t seed, std::int64_t line, std::int64_t sample) {
    return RandomSpeckle(seed, static_cast<std::uint64_t>(line * side + sample));
  }

  static constexpr REGION whole = {0, 0, side, side};

  TEMPORARY_DIRECTORY directory_;
};

TEST_F(COMPARISONS, AFactorIsNoError) {
  const RASTER_READER b = Make("b", [](auto y, auto x) { return Speckle(1, y, x); });
  const RASTER_READER a =
      Make("a", [](auto y, auto x) { return std::polar(2.0, 0.3) * Speckle(1, y, x); });
  const COMPARISON comparison = Compare(a, b, {}, whole);
  EXPECT_EQ(comparison.compared, side * side);
  EXPECT_NEAR(comparison.coherence, 1.0, 1e-9);
  EXPECT_NEAR(comparison.phase_mean, 0.3, 1e-6);
  EXPECT_NEAR(comparison.gain, 2.0, 1e-6);
  EXPECT_LT(comparison.phase_rms, 1e-6);
  EXPECT_LT(comparison.amplitude_error, 1e-6);
  EXPECT_LT(comparison.complex_error, 1e-6);
}

TEST_F(COMPARISONS, AlternatingErrorsHaveKnownFigures) {
  const RASTER_READER b = Make("b", [](auto, auto x) { return x % 2 == 0 ? 1.0 : 3.0; });
  const RASTER_READER turned = Make("turned", [](auto y, auto x) {
    return std::polar(x % 2 == 0 ? 1.0 : 3.0, y % 2 == 0 ? 0.2 : -0.2);
  });
  COMPARISON comparison = Compare(turned, b, {}, whole);
  EXPECT_NEAR(comparison.coherence, std::cos(0.2), 1e-6);
  EXPECT_NEAR(comparison.phase_mean, 0.0, 1e-6);
  EXPECT_NEAR(comparison.phase_rms, 0.2, 1e-6);
  EXPECT_NEAR(comparison.phase_rms_weighted, 0.2, 1e-6);
  EXPECT_NEAR(comparison.complex_error, std::sin(0.2), 1e-6);

  const RASTER_READER dark = Make("dark", [](auto, auto x) {
    return x % 2 == 0 ? std::polar(1.0, x % 4 == 0 ? 0.5 : -0.5) : VALUE(3.0);
  });
  comparison = Compare(dark, b, {}, whole);
  EXPECT_NEAR(comparison.phase_rms, 0.5 / std::sqrt(2.0), 1e-6);
  EXPECT_NEAR(comparison.phase_rms_weighted, 0.5 / std::sqrt(10.0), 1e-6);

  const RASTER_READER uneven = Make("uneven", [](auto y, auto x) {
    return (x % 2 == 0 ? 1.0 : 3.0) + (y % 2 == 0 ? 0.5 : -0.5);
  });
  EXPECT_NEAR(Compare(uneven, b, {}, whole).amplitude_error,
              std::sqrt(1.0 - 1.0 / (1.0 + 0.25 / 5.0)), 1e-6);
}

TEST_F(COMPARISONS, OnlyUsablePixelsOfTheRegionCount) {
  const RASTER_READER b =
      Make("b", [](auto y, auto x) { return y == 0 && x == 5 ? VALUE() : Speckle(1, y, x); });
  const RASTER_READER a = Make("a", [](auto y, auto x) {
    if (y == 1 && x < 4) {
      return VALUE(0.0, std::numeric_limits<double>::infinity());
    }
    return x < 32 ? Speckle(1, y, x) : Speckle(2, y, x);
  });
  const RASTER_READER mask = Make("mask", [](auto, auto x) { return x < 32 ? 1.0 : 0.0; });
  const RASTER_READER top = Make("top", [](auto y, auto) { return y < 10 ? 255.0 : 0.0; });

  const COMPARISON masked = Compare(a, b, {&mask, &top}, whole);
  EXPECT_EQ(masked.compared, 10 * 32 - 4 - 1);
  EXPECT_NEAR(masked.coherence, 1.0, 1e-9);
  const COMPARISON region = Compare(a, b, {&mask}, {4, 1, 60, 2});
  EXPECT_EQ(region.compared, 2 * 28);
  EXPECT_NEAR(region.coherence, 1.0, 1e-9);
  EXPECT_LT(Compare(a, b, {}, {32, 0, 32, side}).coherence, 0.1);
}

TEST_F(COMPARISONS, WithoutPixelsThereAreNoFigures) {
  const RASTER_READER a = Make("a", [](auto, auto) { return VALUE(1.0); });
  const RASTER_READER nothing = Make("nothing", [](auto, auto) { return VALUE(); });
  const COMPARISON comparison = Compare(a, nothing, {}, whole);
  EXPECT_EQ(comparison.compared, 0);
  EXPECT_TRUE(std::isnan(comparison.coherence));
  EXPECT_TRUE(std::isnan(comparison.phase_mean));
}

}  // namespace
