#include "match/coarse_match.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/parallel_lines.h"
#include "logging/formatted_text.h"
#include "match/fourier.h"
#include "picture/grid.h"

namespace {

constexpr int most_cells = 1024;
constexpr float no_value = NAN;

/// The logarithm of the mean power of each cell, NaN where less than half of it has data.
CELL_GRID<float> LogPower(const RASTER_READER& image, const RANGE_AZIMUTH<int>& cell) {
  CELL_GRID<float> grid(static_cast<int>(image.Width() / cell.range),
                        static_cast<int>(image.Height() / cell.azimuth));
  const auto width = static_cast<std::size_t>(cell.range);
  ForEachLine(grid.Rows(), [&](std::int64_t row) {
    std::vector<std::complex<double>> values(static_cast<std::size_t>(grid.Columns()) * width);
    std::vector<double> powers(static_cast<std::size_t>(grid.Columns()));
    std::vector<int> counts(powers.size());
    for (int line = 0; line < cell.azimuth; ++line) {
      image.ReadLine(row * cell.azimuth + line, 0, values);
      for (std::size_t i = 0; i < values.size(); ++i) {
        const double power = std::norm(values[i]);
        if (power > 0.0 && std::isfinite(power)) {
          powers[i / width] += power;
          ++counts[i / width];
        }
      }
    }
    for (int column = 0; column < grid.Columns(); ++column) {
      const auto i = static_cast<std::size_t>(column);
      grid.At(column, static_cast<int>(row)) =
          2 * counts[i] >= cell.range * cell.azimuth
              ? static_cast<float>(std::log(powers[i] / counts[i]))
              : no_value;
    }
  });
  return grid;
}

/// Sums over the values, and over their number, above and to the left of a place.
struct BOX_SUM {
  double value = 0.0;
  double count = 0.0;

  BOX_SUM& Add(const BOX_SUM& other, double factor = 1.0) {
    value += factor * other.value;
    count += factor * other.count;
    return *this;
  }
};

CELL_GRID<BOX_SUM> BoxSums(const CELL_GRID<float>& grid) {
  CELL_GRID<BOX_SUM> sums(grid.Columns() + 1, grid.Rows() + 1);
  for (int row = 0; row < grid.Rows(); ++row) {
    BOX_SUM line;
    for (int column = 0; column < grid.Columns(); ++column) {
      if (const float value = grid.At(column, row); !std::isnan(value)) {
        line.Add({value, 1.0});
      }
      sums.At(column + 1, row + 1) = BOX_SUM(line).Add(sums.At(column + 1, row));
    }
  }
  return sums;
}

/// What a cell has more than the mean of those around it; 0 without data.
CELL_GRID<float> WithoutRegions(const CELL_GRID<float>& grid) {
  constexpr int reach = 8;
  const CELL_GRID<BOX_SUM> sums = BoxSums(grid);
  CELL_GRID<float> result(grid.Columns(), grid.Rows());
  for (int row = 0; row < grid.Rows(); ++row) {
    const int top = std::max(row - reach, 0);
    const int bottom = std::min(row + reach + 1, grid.Rows());
    for (int column = 0; column < grid.Columns(); ++column) {
      const int left = std::max(column - reach, 0);
      const int right = std::min(column + reach + 1, grid.Columns());
      BOX_SUM box = sums.At(right, bottom);
      box.Add(sums.At(left, bottom), -1.0).Add(sums.At(right, top), -1.0).Add(sums.At(left, top));
      const float value = grid.At(column, row);
      result.At(column, row) =
          std::isnan(value) ? 0.0F : value - static_cast<float>(box.value / box.count);
    }
  }
  return result;
}

int CellLength(std::int64_t a, std::int64_t b) {
  return static_cast<int>((std::max(a, b) + most_cells - 1) / most_cells);
}

/// How many cells of the one axis lie over cells of the other at a shift.
int Overlap(int shift, int master, int slave) {
  return std::max(0, std::min(master, slave - shift) - std::max(0, -shift));
}

/// The circular correlation of two grids, large enough that no shift is another one's alias, in
/// units of what unrelated cells, as many as overlap, would have. A shift that leaves next to no
/// overlap has 0.
class CORRELATION {
 public:
  CORRELATION(const CELL_GRID<float>& master, const CELL_GRID<float>& slave)
      : columns_(FourierLength(master.Columns() + slave.Columns())),
        rows_(FourierLength(master.Rows() + slave.Rows())),
        slave_columns_(slave.Columns()),
        slave_rows_(slave.Rows()),
        values_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {
    const REAL_TRANSFORM forward(rows_, columns_);
    COMPLEX_ARRAY master_spectrum(static_cast<std::size_t>(rows_) *
                                  static_cast<std::size_t>(columns_ / 2 + 1));
    COMPLEX_ARRAY cross_spectrum(master_spectrum.size());
    Fill(master);
    forward(values_, master_spectrum);
    Fill(slave);
    forward(values_, cross_spectrum);
    CorrelateSpectra(master_spectrum, cross_spectrum);
    REAL_INVERSE(rows_, columns_)(cross_spectrum, values_);
    Normalise(master);
  }

  /// Place and height of the largest value, in cells and standard deviations of all values.
  RANGE_AZIMUTH<double> Peak(double& snr) const {
    const auto peak = std::max_element(values_.begin(), values_.end());
    double squares = 0.0;
    std::int64_t count = 0;
    for (const float value : values_) {
      squares += static_cast<double>(value) * value;
      count += value != 0.0F ? 1 : 0;
    }
    snr = *peak / std::sqrt(squares / static_cast<double>(count));
    const auto at = static_cast<int>(peak - values_.begin());
    const int column = at % columns_;
    const int row = at / columns_;
    const double x = Vertex(Value(column - 1, row), *peak, Value(column + 1, row));
    const double y = Vertex(Value(column, row - 1), *peak, Value(column, row + 1));
    return {x + Unwrapped(column, columns_, slave_columns_),
            y + Unwrapped(row, rows_, slave_rows_)};
  }

 private:
  void Fill(const CELL_GRID<float>& grid) {
    std::fill(values_.begin(), values_.end(), 0.0F);
    for (int row = 0; row < grid.Rows(); ++row) {
      for (int column = 0; column < grid.Columns(); ++column) {
        values_[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
                static_cast<std::size_t>(column)] = grid.At(column, row);
      }
    }
  }

  void Normalise(const CELL_GRID<float>& master) {
    constexpr double least_share = 1.0 / 64.0;
    const double least = least_share * std::min(master.Columns(), slave_columns_) *
                         std::min(master.Rows(), slave_rows_);
    auto value = values_.begin();
    for (int row = 0; row < rows_; ++row) {
      const double rows = Overlap(Unwrapped(row, rows_, slave_rows_), master.Rows(), slave_rows_);
      for (int column = 0; column < columns_; ++column, ++value) {
        const double overlap = rows * Overlap(Unwrapped(column, columns_, slave_columns_),
                                              master.Columns(), slave_columns_);
        *value = overlap < least ? 0.0F : *value / static_cast<float>(std::sqrt(overlap));
      }
    }
  }

  /// The shift, which is less than `slave` cells, that stands at an index of a length.
  static int Unwrapped(int index, int length, int slave) {
    return index < slave ? index : index - length;
  }

  double Value(int column, int row) const {
    const int wrapped_column = (column + columns_) % columns_;
    const int wrapped_row = (row + rows_) % rows_;
    return values_[static_cast<std::size_t>(wrapped_row) * static_cast<std::size_t>(columns_) +
                   static_cast<std::size_t>(wrapped_column)];
  }

  /// Of the parabola through values at -1, 0 and 1, whose second is the largest.
  static double Vertex(double before, double peak, double after) {
    const double curvature = before - 2.0 * peak + after;
    return curvature < 0.0 ? 0.5 * (before - after) / curvature : 0.0;
  }

  int columns_;
  int rows_;
  int slave_columns_;
  int slave_rows_;
  REAL_ARRAY values_;
};

}  // namespace

COARSE_SHIFT FindCoarseShift(const RASTER_READER& master, const RASTER_READER& slave) {
  // The largest of four million independent normal numbers is hardly ever above 5.5.
  constexpr double least_snr = 7.0;
  COARSE_SHIFT coarse;
  coarse.cell = {CellLength(master.Width(), slave.Width()),
                 CellLength(master.Height(), slave.Height())};
  const CORRELATION correlation(WithoutRegions(LogPower(master, coarse.cell)),
                                WithoutRegions(LogPower(slave, coarse.cell)));
  const RANGE_AZIMUTH<double> cells = correlation.Peak(coarse.snr);
  if (!(coarse.snr >= least_snr)) {
    throw std::runtime_error(
        FormattedText("no overlap or no common features: the best of all shifts stands out by %.1f "
                      "standard deviations, less than %.0f",
                      std::isnan(coarse.snr) ? 0.0 : coarse.snr, least_snr));
  }
  coarse.shift = {cells.range * coarse.cell.range, cells.azimuth * coarse.cell.azimuth};
  return coarse;
}
