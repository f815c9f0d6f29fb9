#pragma once

#include <complex>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

/// Sums over pairs of pixels that follow each other along azimuth, from which the Doppler centroid
/// of the data follows: their phase at lag one is 2 pi times the centroid in lines, modulo one turn
/// a line (S. N. Madsen, "Estimating the Doppler centroid of SAR data", IEEE Transactions on
/// Aerospace and Electronic Systems 25(2), 1989).
struct LAG_ONE {
  std::complex<double> product;  ///< sum of z(line + 1) conj(z(line))
  double power = 0.0;            ///< sum of (|z(line)|^2 + |z(line + 1)|^2) / 2
  std::int64_t pairs = 0;

  /// Pairs with a value that is 0, which marks pixels without data, or not finite are left out.
  void Add(std::complex<double> pixel, std::complex<double> next) noexcept;
  void Add(const LAG_ONE& other) noexcept;
  /// The sums of the same data less a centroid of so many turns a line.
  LAG_ONE Less(double turns) const noexcept;

  /// Turns a line, from -0.5 to 0.5.
  double Turns() const noexcept;
  /// |product| / power, from 0 to 1; NaN without pairs.
  double Coherence() const noexcept;
  /// Standard deviation of `Turns` at n independent pairs of coherence c,
  /// sqrt((1 - c^2) / (2 n c^2)) / (2 pi) (the bound of Rodriguez and Martin, IEE Proceedings F
  /// 139(2), 1992); infinite without pairs.
  double Deviation() const noexcept;
  /// The share of the sampled azimuth band that a flat spectrum of this coherence takes: the b of
  /// c = sin(pi b) / (pi b).
  double Bandwidth() const noexcept;
};

/// An image, line by line. `read` fills `values` with samples 0, 1, ... of a line, is called from
/// several threads, and gives 0 for pixels that are not valid.
struct IMAGE_LINES {
  std::int64_t n_samples = 0;
  std::int64_t n_lines = 0;
  std::function<void(std::int64_t line, std::span<std::complex<double>> values)> read;
};

/// A centroid [turns a line] at a line and a sample.
using CENTROID = std::function<double(double line, double sample)>;

/// The sums of one cell of an image.
struct LAG_ONE_CELL {
  LAG_ONE data;
  LAG_ONE rest;  ///< of the data less the known centroid

  void Add(const LAG_ONE_CELL& other) noexcept {
    data.Add(other.data);
    rest.Add(other.rest);
  }
};

/// The sums of columns x rows cells of equal size that cover an image, row by row, on all
/// processors, from about `most_pairs` pairs of lines, spread evenly. `known` is taken out line by
/// line and in the middle of each cell along range, so that a centroid that sweeps along azimuth
/// does not cancel the sums. Cells that no pair of lines falls into are empty.
std::vector<LAG_ONE_CELL> SumLagOne(const IMAGE_LINES& image, int columns, int rows,
                                    std::int64_t most_pairs, const CENTROID& known);
