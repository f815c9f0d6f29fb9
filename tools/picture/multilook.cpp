#include "picture/multilook.h"

#include <algorithm>
#include <vector>

namespace {

/// How a pixel is divided between a cell and the next one.
struct SHARE {
  int cell;
  double own;   ///< part inside the cell
  double rest;  ///< part inside the next cell
};

/// Shares of a pixel along an axis. In units of 1 / cells of a pixel all borders are integers:
/// those of the pixel are multiples of `cells`, those of the cells are multiples of `pixels`.
SHARE ShareOf(std::int64_t pixel, std::int64_t pixels, int cells) {
  const std::int64_t begin = pixel * cells;
  const std::int64_t cell = begin / pixels;
  const std::int64_t inside = std::min<std::int64_t>((cell + 1) * pixels - begin, cells);
  const double own = static_cast<double>(inside) / cells;
  return {static_cast<int>(cell), own, 1.0 - own};
}

}  // namespace

CELL_GRID<PAIR_SUMS> Multilook(const LINE_SUMS& line_sums, std::int64_t samples, std::int64_t lines,
                               int columns, int rows) {
  std::vector<SHARE> sample_shares;
  sample_shares.reserve(static_cast<std::size_t>(samples));
  for (std::int64_t sample = 0; sample < samples; ++sample) {
    sample_shares.push_back(ShareOf(sample, samples, columns));
  }
  CELL_GRID<PAIR_SUMS> grid(columns, rows);
  std::vector<PAIR_SUMS> pixels(sample_shares.size());
  std::vector<PAIR_SUMS> row_sums(static_cast<std::size_t>(columns));
  for (std::int64_t line = 0; line < lines; ++line) {
    line_sums(line, pixels);
    std::fill(row_sums.begin(), row_sums.end(), PAIR_SUMS{});
    for (std::size_t i = 0; i < pixels.size(); ++i) {
      const auto& [cell, own, rest] = sample_shares[i];
      const auto column = static_cast<std::size_t>(cell);
      row_sums[column].Add(pixels[i], own);
      if (rest > 0.0) {
        row_sums[column + 1].Add(pixels[i], rest);
      }
    }
    const auto& [row, own, rest] = ShareOf(line, lines, rows);
    for (int column = 0; column < columns; ++column) {
      const PAIR_SUMS& sums = row_sums[static_cast<std::size_t>(column)];
      grid.At(column, row).Add(sums, own);
      if (rest > 0.0) {
        grid.At(column, row + 1).Add(sums, rest);
      }
    }
  }
  return grid;
}
