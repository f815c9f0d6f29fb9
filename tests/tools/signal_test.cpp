#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "scene/periodic_signal.h"
#include "scene/random.h"
#include "scene/scene_signal.h"

namespace {

using VALUE = std::complex<double>;

constexpr int size = 32;

struct TERM {
  int k;
  int m;
  VALUE factor;
};

/// The sum over the terms with |k|, |m| <= last.
VALUE Sum(const std::vector<TERM>& terms, int last, double line, double sample) {
  VALUE sum = 0.0;
  for (const auto& [k, m, factor] : terms) {
    if (std::max(std::abs(k), std::abs(m)) <= last) {
      sum += factor * std::polar(1.0, 2.0 * std::numbers::pi * (k * line + m * sample) / size);
    }
  }
  return sum;
}

/// A number from first up to first + size - 1.
int RandomNumber(int first, std::uint64_t index) {
  return first + static_cast<int>(size * RandomUniform(8, index));
}

TEST(PERIODIC_SIGNAL, IsTheFourierSumOfItsBandEverywhere) {
  std::array<std::vector<TERM>, PERIODIC_SIGNAL::layer_count> terms;
  std::array<PERIODIC_SIGNAL::PIXELS, PERIODIC_SIGNAL::layer_count> layers;
  for (std::uint64_t layer = 0; layer < layers.size(); ++layer) {
    for (std::uint64_t i = layer * 1000; i < layer * 1000 + 300; ++i) {
      terms[layer].push_back({RandomNumber(-size / 2, 2 * i), RandomNumber(-size / 2, 2 * i + 1),
                              RandomSpeckle(7, i) / 16.0});
    }
    for (int i = 0; i < size * size; ++i) {
      layers[layer].push_back(Sum(terms[layer], size / 2, i / size, i % size));
    }
  }
  for (const auto& [bandwidth, last] : {std::pair{1.0, 15}, {0.8, 12}, {0.25, 3}}) {
    const PERIODIC_SIGNAL signal(size, bandwidth, layers);
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
      for (std::uint64_t i = 0; i < 100; ++i) {
        const double line = 3.0 * size * (RandomUniform(9, 2 * i) - 0.5);
        const double sample = 3.0 * size * (RandomUniform(9, 2 * i + 1) - 0.5);
        const VALUE expected = Sum(terms[layer], last, line, sample);
        EXPECT_LT(std::abs(signal.At(line, sample)[layer] - expected), 1e-8)
            << bandwidth << ": at line " << line << ", sample " << sample;
      }
      const VALUE expected = Sum(terms[layer], last, 5, 9);
      EXPECT_LT(std::abs(signal.AtPixel(-27, 73)[layer] - expected), 1e-12) << bandwidth;
    }
  }
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
  SCENE_OPTIONS options;
  options.tile = 128;
  options.point_targets = 0;
  options.bandwidth = 0.4;  // neighbours resemble each other, and their phase is well measured
  options.n_samples = 128;
  options.n_lines = 100000;
  options.doppler_range = 100.0;
  options.doppler_azimuth = 500.0;
  for (const double oversampling : {1.0, 1.2}) {
    options.oversampling = oversampling;
    const SCENE_SIGNAL signal(options);
    const SCENE_DOPPLER doppler(options);
    for (const int line : {0, 50000, 90000}) {
      const STEP_PHASES steps = MeasureSteps(signal, line, 128);
      const double frequency = doppler.Frequency(line + 64, 64);
      EXPECT_NEAR(steps.azimuth, 2.0 * std::numbers::pi * frequency / SCENE_DOPPLER::prf, 0.05);
      EXPECT_NEAR(steps.range, 0.0, 0.05);
    }
  }
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

}  // namespace
