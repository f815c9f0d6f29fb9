#pragma once

#include <complex>
#include <cstdint>
#include <vector>

#include "common/range_azimuth.h"
#include "common/raster_reader.h"
#include "match/fourier.h"

/// The amplitudes of a rectangle of a complex image, with two of them a pixel along either axis.
///
/// The detected image has twice the bandwidth of the complex one, so that its amplitudes alone
/// would be aliased, and a correlation of them biased towards whole and half pixels. A steered or
/// squinted image may moreover have its azimuth spectrum anywhere, also across the ends of the
/// band, and moving along the lines: centroid and sweep are estimated from the data, from the
/// phases between neighbouring pixels, and removed before the spectrum is widened. Where it almost
/// fills the band a chip is too small to tell its centroid, and that of the whole image serves.
/// Only the amplitudes are used later, so that nothing has to be put back.
class AMPLITUDE_CHIP {
 public:
  static constexpr int samples_a_pixel = 2;

  /// For rectangles of this size in pixels, of an image with this azimuth centroid [turns a line].
  AMPLITUDE_CHIP(const RANGE_AZIMUTH<int>& size, double centroid);

  /// Reads and detects the rectangle that begins at this sample and line, which may lie in part or
  /// as a whole outside the image. Pixels without data, those that are 0 or not finite, and those
  /// outside get the mean amplitude.
  void Load(const RASTER_READER& image, std::int64_t sample, std::int64_t line);

  int Columns() const noexcept { return samples_a_pixel * size_.range; }
  int Rows() const noexcept { return samples_a_pixel * size_.azimuth; }
  /// Amplitude less the mean of all that have data.
  float At(int row, int column) const noexcept {
    return amplitudes_[static_cast<std::size_t>(std::int64_t{row} * Columns() + column)];
  }
  /// Share, 0 to 1, of the pixels with data in a part of the rectangle.
  double DataShare(const RANGE_AZIMUTH<int>& first, const RANGE_AZIMUTH<int>& size) const noexcept;

 private:
  /// Pixels around the rectangle that are read besides: the widening takes a chip to be periodic,
  /// and what its ends do to each other has to stay outside.
  static constexpr int margin = 8;

  void ReadPixels(const RASTER_READER& image, std::int64_t sample, std::int64_t line);
  void WidenSpectrum();
  void Detect();
  bool HasData(int line, int sample) const noexcept {
    return has_data_[static_cast<std::size_t>((std::int64_t{line} + margin) * columns_ + sample +
                                              margin)] != 0;
  }

  RANGE_AZIMUTH<int> size_;
  double centroid_;
  int columns_;  ///< with the margins
  int rows_;
  COMPLEX_TRANSFORM forward_;
  COMPLEX_TRANSFORM backward_;
  std::vector<std::complex<double>> line_;
  std::vector<unsigned char> has_data_;
  COMPLEX_ARRAY pixels_;
  COMPLEX_ARRAY wide_;
  std::vector<float> amplitudes_;
};
