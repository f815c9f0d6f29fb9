#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "scene/periodic_signal.h"
#include "scene/random.h"

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

}  // namespace
