#include "scene/periodic_signal.h"

#include <fftw3.h>

#include <bit>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace {

using VALUE = PERIODIC_SIGNAL::VALUE;
using PIXELS = PERIODIC_SIGNAL::PIXELS;

/// In place, not normalised.
void TransformSquare(PIXELS& pixels, int size, int direction) {
  auto* data = reinterpret_cast<fftw_complex*>(pixels.data());
  fftw_plan plan = fftw_plan_dft_2d(size, size, data, data, direction, FFTW_ESTIMATE);
  fftw_execute(plan);
  fftw_destroy_plan(plan);
}

/// The largest |k| in the band, which ends before bandwidth * size / 2.
int LastTerm(int size, double bandwidth) {
  return static_cast<int>(std::ceil(bandwidth * size / 2.0)) - 1;
}

std::size_t Wrap(std::int64_t index, int size) {
  return static_cast<std::size_t>(index & (size - 1));
}

std::size_t Offset(std::int64_t line, std::int64_t sample, int size) {
  return Wrap(line, size) * static_cast<std::size_t>(size) + Wrap(sample, size);
}

/// Calls `handle(k, m)` for all terms.
template <class HANDLE>
void ForEachTerm(int last, HANDLE handle) {
  for (int k = -last; k <= last; ++k) {
    for (int m = -last; m <= last; ++m) {
      handle(k, m);
    }
  }
}

PIXELS KeepBand(const PIXELS& spectrum, int size, int last) {
  PIXELS kept(spectrum.size());
  const double scale = 1.0 / static_cast<double>(spectrum.size());
  ForEachTerm(
      last, [&](int k, int m) { kept[Offset(k, m, size)] = spectrum[Offset(k, m, size)] * scale; });
  return kept;
}

/// The window at a distance of z grid points from its centre.
double Window(double z, int length) {
  constexpr double beta_per_point = 2.3;  // best for a grid of twice the band
  const double u = 2.0 * z / length;
  const double root = std::sqrt(std::max(0.0, 1.0 - u * u));
  return std::exp(beta_per_point * length * (root - 1.0));
}

/// The window's Fourier transform at k / fine_size cycles a grid point, k = 0 ... last. With
/// z = (length / 2) sin(a) the integrand is smooth to its ends, so that the midpoint rule
/// converges fast.
std::vector<double> TransformWindow(int length, int fine_size, int last) {
  constexpr int steps = 400;
  std::vector<double> transform;
  for (int k = 0; k <= last; ++k) {
    const double frequency = 2.0 * std::numbers::pi * k / fine_size;
    double sum = 0.0;
    for (int i = 0; i < steps; ++i) {
      const double angle = std::numbers::pi * ((i + 0.5) / steps - 0.5);
      const double z = 0.5 * length * std::sin(angle);
      sum += Window(z, length) * std::cos(frequency * z) * std::cos(angle);
    }
    transform.push_back(sum * 0.5 * length * std::numbers::pi / steps);
  }
  return transform;
}

/// The grid points under the window around a position and their weights.
template <int LENGTH>
struct WINDOW_POINTS {
  explicit WINDOW_POINTS(double position)
      : first(static_cast<std::int64_t>(std::ceil(position - 0.5 * LENGTH))) {
    for (int i = 0; i < LENGTH; ++i) {
      weights[i] = Window(position - static_cast<double>(first + i), LENGTH);
    }
  }
  std::int64_t first;
  double weights[LENGTH];
};

}  // namespace

void PERIODIC_SIGNAL::CheckShape(int size, double bandwidth) {
  if (size < 16 || !std::has_single_bit(static_cast<unsigned>(size))) {
    throw std::invalid_argument("the period must be a power of two and at least 16");
  }
  if (!(bandwidth > 0.0 && bandwidth <= 1.0)) {
    throw std::invalid_argument("the bandwidth must be above 0 and at most 1");
  }
}

int PERIODIC_SIGNAL::TermCount(int size, double bandwidth) {
  return 2 * LastTerm(size, bandwidth) + 1;
}

PERIODIC_SIGNAL::PERIODIC_SIGNAL(int size, double bandwidth, std::array<PIXELS, layer_count> layers)
    : size_(size),
      fine_size_(2 * size),
      fine_stride_(static_cast<std::size_t>(fine_size_ + window_length)) {
  CheckShape(size, bandwidth);
  const int last = LastTerm(size_, bandwidth);
  const std::vector<double> window_transform = TransformWindow(window_length, fine_size_, last);
  pixels_.resize(layers[0].size());
  fine_grid_.resize(static_cast<std::size_t>(fine_size_) * fine_stride_);
  for (int layer = 0; layer < layer_count; ++layer) {
    PIXELS& pixels = layers[layer];
    TransformSquare(pixels, size_, FFTW_FORWARD);
    pixels = KeepBand(pixels, size_, last);
    FillFineGrid(layer, pixels, window_transform);
    TransformSquare(pixels, size_, FFTW_BACKWARD);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
      pixels_[i][layer] = pixels[i];
    }
    PIXELS().swap(pixels);
  }
}

void PERIODIC_SIGNAL::FillFineGrid(int layer, const PIXELS& spectrum,
                                   const std::vector<double>& window_transform) {
  const auto fine_size = static_cast<std::size_t>(fine_size_);
  PIXELS fine(fine_size * fine_size);
  ForEachTerm(static_cast<int>(window_transform.size()) - 1, [&](int k, int m) {
    fine[Offset(k, m, fine_size_)] =
        spectrum[Offset(k, m, size_)] /
        (window_transform[std::abs(k)] * window_transform[std::abs(m)]);
  });
  TransformSquare(fine, fine_size_, FFTW_BACKWARD);
  for (std::size_t line = 0; line < fine_size; ++line) {
    for (std::size_t i = 0; i < fine_stride_; ++i) {
      fine_grid_[line * fine_stride_ + i][layer] = fine[line * fine_size + i % fine_size];
    }
  }
}

PERIODIC_SIGNAL::VALUES PERIODIC_SIGNAL::AtPixel(std::int64_t line,
                                                 std::int64_t sample) const noexcept {
  return pixels_[Offset(line, sample, size_)];
}

PERIODIC_SIGNAL::VALUES PERIODIC_SIGNAL::At(double line, double sample) const noexcept {
  const WINDOW_POINTS<window_length> lines(2.0 * line);
  const WINDOW_POINTS<window_length> samples(2.0 * sample);
  double sums[2 * layer_count] = {};
  for (int k = 0; k < window_length; ++k) {
    const VALUES* points = &fine_grid_[Wrap(lines.first + k, fine_size_) * fine_stride_ +
                                       Wrap(samples.first, fine_size_)];
    double line_sums[2 * layer_count] = {};
    for (int j = 0; j < window_length; ++j) {
      // A layer's value is a pair of doubles: real and imaginary part.
      const auto* components = reinterpret_cast<const double*>(&points[j]);
      for (int i = 0; i < 2 * layer_count; ++i) {
        line_sums[i] += samples.weights[j] * components[i];
      }
    }
    for (int i = 0; i < 2 * layer_count; ++i) {
      sums[i] += lines.weights[k] * line_sums[i];
    }
  }
  return {VALUE(sums[0], sums[1]), VALUE(sums[2], sums[3])};
}
