#include "compare/comparison.h"

#include <cmath>

#include "scene/random.h"
#include "tools/image_test.h"

namespace {

constexpr int side = 64;
constexpr REGION whole = {0, 0, side, side};

class COMPARISONS : public IMAGE_TEST {
 protected:
  template <class PIXEL>
  RASTER_READER Make(const char* name, PIXEL pixel) const {
    return Complex(name, side, side, pixel);
  }

  static VALUE Speckle(std::uint64_t seed, int sample, int line) {
    return RandomSpeckle(seed, static_cast<std::uint64_t>(line * side + sample));
  }
};

TEST_F(COMPARISONS, AFactorIsNoError) {
  const RASTER_READER b = Make("b", [](int x, int y) { return Speckle(1, x, y); });
  const RASTER_READER a =
      Make("a", [](int x, int y) { return std::polar(2.0, 0.3) * Speckle(1, x, y); });
  const COMPARISON comparison = Compare(PAIR_LINES(a, b, {}), whole);
  EXPECT_EQ(comparison.compared, side * side);
  EXPECT_NEAR(comparison.coherence, 1.0, 1e-9);
  EXPECT_NEAR(comparison.phase_mean, 0.3, 1e-6);
  EXPECT_NEAR(comparison.gain, 2.0, 1e-6);
  EXPECT_LT(comparison.complex_error, 1e-6);
}

TEST_F(COMPARISONS, AlternatingErrorsHaveKnownFigures) {
  const auto stripes = [](int x) { return x % 2 == 0 ? 1.0 : 3.0; };
  const RASTER_READER b = Make("b", [&](int x, int) { return stripes(x); });
  const RASTER_READER dark_turned = Make("turned", [&](int x, int y) {
    return std::polar(stripes(x), x % 2 != 0 ? 0.0 : y % 2 == 0 ? 0.5 : -0.5);
  });
  COMPARISON comparison = Compare(PAIR_LINES(dark_turned, b, {}), whole);
  EXPECT_NEAR(comparison.coherence, (9.0 + std::cos(0.5)) / 10.0, 1e-6);
  EXPECT_NEAR(comparison.phase_mean, 0.0, 1e-6);
  EXPECT_NEAR(comparison.phase_rms, 0.5 / std::sqrt(2.0), 1e-6);
  EXPECT_NEAR(comparison.phase_rms_weighted, 0.5 / std::sqrt(10.0), 1e-6);

  const RASTER_READER uneven =
      Make("uneven", [&](int x, int y) { return stripes(x) + (y % 2 == 0 ? 0.5 : -0.5); });
  comparison = Compare(PAIR_LINES(uneven, b, {}), whole);
  const double error = std::sqrt(1.0 - 1.0 / (1.0 + 0.25 / 5.0));
  EXPECT_NEAR(comparison.amplitude_error, error, 1e-6);
  EXPECT_NEAR(comparison.complex_error, error, 1e-6);
}

TEST_F(COMPARISONS, OnlyUsablePixelsOfTheRegionCount) {
  const RASTER_READER b =
      Make("b", [](int x, int y) { return y == 0 && x == 5 ? VALUE() : Speckle(1, x, y); });
  const RASTER_READER a = Make("a", [](int x, int y) {
    return y == 1 && x < 4 ? VALUE(0.0, HUGE_VAL) : Speckle(x < 32 ? 1 : 2, x, y);
  });
  const RASTER_READER left = Make("left", [](int x, int) { return x < 32 ? 1.0 : 0.0; });
  const RASTER_READER top = Make("top", [](int, int y) { return y < 10 ? 255.0 : 0.0; });

  const COMPARISON masked = Compare(PAIR_LINES(a, b, {&left, &top}), whole);
  EXPECT_EQ(masked.compared, 10 * 32 - 4 - 1);
  EXPECT_NEAR(masked.coherence, 1.0, 1e-9);
  EXPECT_EQ(Compare(PAIR_LINES(a, b, {&left}), {4, 1, 60, 2}).compared, 2 * 28);
  EXPECT_LT(Compare(PAIR_LINES(a, b, {}), {32, 0, 32, side}).coherence, 0.1);
  EXPECT_TRUE(std::isnan(Compare(PAIR_LINES(a, b, {&left}), {40, 0, 8, 8}).coherence));
}

}  // namespace
