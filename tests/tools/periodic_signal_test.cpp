#include "scene/periodic_signal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <utility>

#include "scene/random.h"

namespace {

using VALUE = PERIODIC_SIGNAL::VALUE;
using PIXELS = PERIODIC_SIGNAL::PIXELS;
using LAYERS = std::array<PIXELS, PERIODIC_SIGNAL::layer_count>;

constexpr int size = 32;

LAYERS RandomLayers() {
  LAYERS layers;
  for (std::uint64_t i = 0; i < 2 * size * size; ++i) {
    layers[i / (size * size)].push_back(RandomSpeckle(7, i));
  }
  return layers;
}

VALUE Turn(double cycles) {
  return std::polar(1.0, 2.0 * std::numbers::pi * cycles);
}

/// The Fourier sum over the terms |k|, |m| <= last, term by term.
class FOURIER_SUM {
 public:
  FOURIER_SUM(const PIXELS& pixels, int last) : last_(last) {
    for (int k = -last; k <= last; ++k) {
      for (int m = -last; m <= last; ++m) {
        VALUE term = 0.0;
        for (int i = 0; i < size * size; ++i) {
          term += pixels[i] * Turn(-static_cast<double>(k * (i / size) + m * (i % size)) / size);
        }
        terms_.push_back(term / static_cast<double>(size * size));
      }
    }
  }

  VALUE At(double line, double sample) const {
    VALUE sum = 0.0;
    std::size_t i = 0;
    for (int k = -last_; k <= last_; ++k) {
      for (int m = -last_; m <= last_; ++m) {
        sum += terms_[i++] * Turn((k * line + m * sample) / size);
      }
    }
    return sum;
  }

 private:
  int last_;
  PIXELS terms_;
};

TEST(PERIODIC_SIGNAL, IsTheFourierSumOfItsBandEverywhere) {
  const LAYERS layers = RandomLayers();
  for (const auto& [bandwidth, last_term] : {std::pair{1.0, 15}, {0.8, 12}, {0.25, 3}}) {
    SCOPED_TRACE(bandwidth);
    const PERIODIC_SIGNAL signal(size, bandwidth, layers);
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
      const FOURIER_SUM sum(layers[layer], last_term);
      for (std::uint64_t i = 0; i < 100; ++i) {
        const double line = 3.0 * size * (RandomUniform(8, 2 * i) - 0.5);
        const double sample = 3.0 * size * (RandomUniform(8, 2 * i + 1) - 0.5);
        EXPECT_LT(std::abs(signal.At(line, sample)[layer] - sum.At(line, sample)), 1e-8)
            << "at line " << line << ", sample " << sample;
      }
      EXPECT_LT(std::abs(signal.AtPixel(-27, 73)[layer] - sum.At(5, 9)), 1e-12);
    }
  }
}

}  // namespace
