#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <vector>

/// Two band-limited complex signals ("layers") of the same period along lines and samples, which
/// can be evaluated anywhere. A band-limited periodic signal is a finite Fourier sum,
///
///   f(y, x) = sum over |k|, |m| < bandwidth * size / 2 of F[k][m] exp(2 pi i (k y + m x) / size),
///
/// and that sum is what `At` yields, with a relative error below 1e-8. It is found without going
/// through all terms: an FFT gives the sum on a grid of half pixels, with every term divided by
/// the transform of a short window, and between the grid points that window,
/// exp(beta (sqrt(1 - (2 z / w)^2) - 1)) over w = 10 grid points, interpolates.
class PERIODIC_SIGNAL {
 public:
  static constexpr int layer_count = 2;
  using VALUE = std::complex<double>;
  using PIXELS = std::vector<VALUE>;
  /// The values of both layers at one place.
  using VALUES = std::array<VALUE, layer_count>;

  /// Any pixels, size * size a layer, line after line; what lies outside the band is removed
  /// from them. Throws as CheckShape.
  PERIODIC_SIGNAL(int size, double bandwidth, std::array<PIXELS, layer_count> layers);

  /// Throws std::invalid_argument unless the size is a power of two and at least 16, and the
  /// bandwidth above 0 and at most 1.
  static void CheckShape(int size, double bandwidth);

  /// Number of Fourier terms along one axis.
  static int TermCount(int size, double bandwidth);

  /// At a pixel: the plain result of the FFT.
  VALUES AtPixel(std::int64_t line, std::int64_t sample) const noexcept;

  /// Anywhere.
  VALUES At(double line, double sample) const noexcept;

 private:
  static constexpr int window_length = 10;

  void FillFineGrid(int layer, const PIXELS& spectrum, const std::vector<double>& window_transform);

  int size_;
  int fine_size_;
  std::size_t fine_stride_;  ///< the first points of a line are repeated behind its end
  std::vector<VALUES> pixels_;
  std::vector<VALUES> fine_grid_;
};
