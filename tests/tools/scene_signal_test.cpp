#include "scene/scene_signal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "scene/scene_warp.h"

namespace {

using VALUE = std::complex<double>;

SCENE_OPTIONS SmallScene() {
  SCENE_OPTIONS options;
  options.n_samples = 128;
  options.n_lines = 128;
  options.tile = 128;
  options.amplitude = 1.0;
  options.point_targets = 0;
  return options;
}

double WindowedSinc(double x, double half_length) {
  constexpr double shape = 14.0;
  const double root = std::sqrt(std::max(0.0, 1.0 - x * x / (half_length * half_length)));
  const double window = std::cyl_bessel_i(0.0, shape * root) / std::cyl_bessel_i(0.0, shape);
  const double argument = std::numbers::pi * x;
  return window * (std::abs(x) < 1e-12 ? 1.0 : std::sin(argument) / argument);
}

/// Interpolates the pixels with a sinc of 64 x 64 taps. Each line is turned back by the phase of
/// the centroid and its rate at the pixel before the position, the sum is turned forth:
/// 2 pi f / PRF (fraction - t) + pi (df/dtime) / PRF^2 (fraction^2 - t^2).
VALUE Resample(const SCENE_SIGNAL& signal, const SCENE_DOPPLER& doppler, double line, double sample,
               bool with_rate) {
  constexpr int half_length = 32;
  const double pixel_line = std::floor(line);
  const double pixel_sample = std::floor(sample);
  const double fraction = line - pixel_line;
  const double ramp =
      2.0 * std::numbers::pi * doppler.Frequency(pixel_line, pixel_sample) / SCENE_DOPPLER::prf;
  const double change_a_line = doppler.Frequency(pixel_line + 1.0, pixel_sample) -
                               doppler.Frequency(pixel_line, pixel_sample);
  const double curvature = with_rate ? std::numbers::pi * change_a_line / SCENE_DOPPLER::prf : 0.0;
  VALUE sum = 0.0;
  for (int t = 1 - half_length; t <= half_length; ++t) {
    VALUE line_sum = 0.0;
    for (int j = 1 - half_length; j <= half_length; ++j) {
      line_sum += WindowedSinc(pixel_sample + j - sample, half_length) *
                  signal.AtPixel(static_cast<std::int64_t>(pixel_line) + t,
                                 static_cast<std::int64_t>(pixel_sample) + j);
    }
    const double phase = ramp * (fraction - t) + curvature * (fraction * fraction - t * t);
    sum += WindowedSinc(t - fraction, half_length) * std::polar(1.0, phase) * line_sum;
  }
  return sum;
}

/// RMS difference between the signal and the pixels resampled, over positions far and near.
double ResamplingError(const SCENE_OPTIONS& options, bool with_rate) {
  const SCENE_SIGNAL signal(options);
  const SCENE_DOPPLER doppler(options);
  constexpr int n_positions = 40;
  double power = 0.0;
  for (int i = 0; i < n_positions; ++i) {
    const double line = 3.37 * i - 10.0;
    const double sample = 5.61 * i - 60.0;
    power +=
        std::norm(signal.At(line, sample) - Resample(signal, doppler, line, sample, with_rate));
  }
  printf("err %g\n", std::sqrt(power / n_positions));
  return std::sqrt(power / n_positions);
}

TEST(SCENE_SIGNAL, IsBandLimitedWithoutDoppler) {
  SCENE_OPTIONS options = SmallScene();
  options.doppler = options.doppler_range = options.doppler_azimuth = 0.0;
  EXPECT_LT(ResamplingError(options, false), 1e-6);
}

TEST(SCENE_SIGNAL, DerampingByTheCentroidRecoversIt) {
  SCENE_OPTIONS options = SmallScene();
  options.doppler = 600.0;
  options.doppler_range = 3.0;
  options.doppler_azimuth = 2.0;
  EXPECT_LT(ResamplingError(options, false), 1e-3);
  options.oversampling = 1.2;
  EXPECT_LT(ResamplingError(options, false), 1e-3);
}

TEST(SCENE_SIGNAL, DerampingBySteepCentroidsNeedsTheRate) {
  SCENE_OPTIONS options = SmallScene();
  options.doppler_range = 0.0;
  options.doppler_azimuth = 2000.0;  // over 128 lines
  EXPECT_LT(ResamplingError(options, true), 1e-3);
  EXPECT_GT(ResamplingError(options, false), 0.01);
}

/// Phase of the signal's step along each axis: that of its spectrum's centre.
struct STEP_PHASES {
  double azimuth;
  double range;
};

STEP_PHASES MeasureSteps(const SCENE_SIGNAL& signal, std::int64_t first_line, int n_lines) {
  VALUE azimuth = 0.0;
  VALUE range = 0.0;
  for (std::int64_t line = first_line; line < first_line + n_lines; ++line) {
    for (std::int64_t sample = 0; sample < 128; ++sample) {
      const VALUE here = std::conj(signal.AtPixel(line, sample));
      azimuth += signal.AtPixel(line + 1, sample) * here;
      range += signal.AtPixel(line, sample + 1) * here;
    }
  }
  return {std::arg(azimuth), std::arg(range)};
}

TEST(SCENE_SIGNAL, SpectrumFollowsTheCentroidAlongAzimuthAndStaysCentredAlongRange) {
  SCENE_OPTIONS options = SmallScene();
  options.bandwidth = 0.4;  // neighbours resemble each other, and their phase is well measured
  options.n_lines = 100000;
  options.doppler_range = 100.0;
  options.doppler_azimuth = 500.0;
  const SCENE_SIGNAL signal(options);
  const SCENE_DOPPLER doppler(options);
  for (const int line : {0, 50000, 90000}) {
    const STEP_PHASES steps = MeasureSteps(signal, line, 128);
    const double frequency = doppler.Frequency(line + 64, 64);
    EXPECT_NEAR(steps.azimuth, 2.0 * std::numbers::pi * frequency / SCENE_DOPPLER::prf, 0.05);
    EXPECT_NEAR(steps.range, 0.0, 0.05);
  }
}

TEST(SCENE_SIGNAL, HasTheWantedPowerEverywhere) {
  SCENE_OPTIONS options = SmallScene();
  options.tile = 64;
  constexpr int n_scenes = 20;
  double at_middles = 0.0;
  double between_middles = 0.0;
  for (options.seed = 1; options.seed <= n_scenes; ++options.seed) {
    const SCENE_SIGNAL signal(options);
    for (int line = 0; line < 64; ++line) {
      for (int sample = 0; sample < 64; ++sample) {
        const bool is_at_middle = (line + 8) % 32 < 16;
        (is_at_middle ? at_middles : between_middles) += std::norm(signal.AtPixel(line, sample));
      }
    }
  }
  constexpr double n_pixels = n_scenes * 64 * 64 / 2;
  EXPECT_NEAR(at_middles / n_pixels, 1.0, 0.05);
  EXPECT_NEAR(between_middles / n_pixels, 1.0, 0.05);
}

TEST(SCENE_SIGNAL, PointTargetsStandOut) {
  SCENE_OPTIONS options = SmallScene();
  const SCENE_SIGNAL without(options);
  options.point_targets = 3;
  const SCENE_SIGNAL with(options);
  int bright = 0;
  for (int line = 0; line < 128; ++line) {
    for (int sample = 0; sample < 128; ++sample) {
      bright += std::abs(with.AtPixel(line, sample) - without.AtPixel(line, sample)) > 13.0 ? 1 : 0;
    }
  }
  EXPECT_GE(bright, 3);
  EXPECT_LE(bright, 27);
}

TEST(SCENE_SIGNAL, DependsOnTheSeedAlone) {
  SCENE_OPTIONS options = SmallScene();
  const VALUE value = SCENE_SIGNAL(options).At(10.25, 20.5);
  EXPECT_EQ(SCENE_SIGNAL(options).At(10.25, 20.5), value);
  options.seed = 2;
  EXPECT_NE(SCENE_SIGNAL(options).At(10.25, 20.5), value);
}

TEST(SCENE_DOPPLER, AnnotationGivesTheFrequency) {
  SCENE_OPTIONS options;
  options.n_samples = 3000;
  options.n_lines = 5000;
  options.oversampling = 1.1;
  const SCENE_DOPPLER doppler(options);
  for (const double azimuth_time : doppler.AzimuthTimes()) {
    const std::vector<double> coefficients = doppler.Coefficients(azimuth_time);
    const double line =
        (azimuth_time - SCENE_DOPPLER::first_azimuth_time) * 1.1 * SCENE_DOPPLER::prf;
    for (const double sample : {0.0, 1700.0, 2999.0}) {
      const double range_time = SCENE_DOPPLER::first_range_time +
                                sample / (1.1 * SCENE_DOPPLER::range_sampling_frequency);
      const double dt = range_time - doppler.ReferenceTime();
      EXPECT_NEAR(coefficients[0] + dt * (coefficients[1] + dt * coefficients[2]),
                  doppler.Frequency(line, sample), 1e-6);
    }
  }
}

TEST(SCENE_WARP, ShiftsAreTheWantedOnesAmidTheImageAndStayWithinTheWarp) {
  SCENE_OPTIONS options;
  options.n_samples = 200;
  options.n_lines = 500;
  options.warp = 4.0;
  const SCENE_WARP warp(options);
  EXPECT_NEAR(warp.RangeShift(100, 250), options.shift_range, 1e-12);
  EXPECT_NEAR(warp.AzimuthShift(100, 250), options.shift_azimuth, 1e-12);
  for (const double sample : {0.0, 100.0, 200.0}) {
    for (const double line : {0.0, 250.0, 500.0}) {
      EXPECT_LE(std::abs(warp.RangeShift(sample, line) - options.shift_range), 4.0 + 1e-12);
      EXPECT_LE(std::abs(warp.AzimuthShift(sample, line) - options.shift_azimuth), 4.0 + 1e-12);
    }
  }
  EXPECT_NEAR(warp.RangeShift(200, 500) - options.shift_range, 4.0, 1e-12);
}

}  // namespace
