#include "interferogram/interferogram.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <stdexcept>

#include "base/parallel_lines.h"
#include "common/raster_writer.h"

namespace {

/// Sums up cells side by side in one row, from the sample `first` on.
void SumCells(const PAIR_LINES& pair, const RANGE_AZIMUTH<int>& looks, std::int64_t row,
              std::int64_t first, std::span<PAIR_SUMS> cells) {
  thread_local PAIR_LINES::LINE line;
  const auto width = static_cast<std::size_t>(looks.range);
  const auto count = static_cast<std::int64_t>(cells.size() * width);
  for (int look = 0; look < looks.azimuth; ++look) {
    pair.Read(row * looks.azimuth + look, first, count, line);
    const std::span<const PAIR_LINES::VALUE> a(line.a);
    const std::span<const PAIR_LINES::VALUE> b(line.b);
    for (std::size_t cell = 0; cell < cells.size(); ++cell) {
      cells[cell].Add(SumPairs(a.subspan(cell * width, width), b.subspan(cell * width, width)));
    }
  }
}

/// The sums of the cells of one row.
std::vector<PAIR_SUMS> SumRow(const PAIR_LINES& pair, const RANGE_AZIMUTH<int>& looks,
                              std::int64_t row, std::int64_t columns) {
  std::vector<PAIR_SUMS> sums(static_cast<std::size_t>(columns));
  const std::int64_t handy_columns =
      std::max<std::int64_t>(1, PAIR_LINES::handy_count / looks.range);
  for (std::int64_t column = 0; column < columns; column += handy_columns) {
    const std::span<PAIR_SUMS> cells(
        sums.begin() + column, static_cast<std::size_t>(std::min(handy_columns, columns - column)));
    SumCells(pair, looks, row, column * looks.range, cells);
  }
  return sums;
}

/// A row of numbers, as many a cell as `of_cell` appends.
template <class OF_CELL>
std::vector<double> Numbers(const std::vector<PAIR_SUMS>& cells, const OF_CELL& of_cell) {
  std::vector<double> numbers;
  numbers.reserve(2 * cells.size());
  for (const PAIR_SUMS& cell : cells) {
    of_cell(cell, numbers);
  }
  return numbers;
}

double OrZero(const PAIR_SUMS& cell, double value) {
  return cell.weight > 0.0 ? value : 0.0;
}

}  // namespace

void MakeInterferogram(const PAIR_LINES& pair, const RANGE_AZIMUTH<int>& looks,
                       const INTERFEROGRAM_PATHS& paths,
                       const std::function<void(double)>& progress) {
  const std::int64_t columns = pair.Width() / looks.range;
  const std::int64_t rows = pair.Height() / looks.azimuth;
  if (columns < 1 || rows < 1) {
    throw std::invalid_argument("the images are smaller than one cell of looks");
  }
  RASTER_WRITER interferogram(paths.interferogram, columns, rows, PIXEL_TYPE::C_FLT_6);
  RASTER_WRITER coherence(paths.coherence, columns, rows, PIXEL_TYPE::FLT_6);
  RASTER_WRITER first_amplitude(paths.first_amplitude, columns, rows, PIXEL_TYPE::FLT_6);
  RASTER_WRITER second_amplitude(paths.second_amplitude, columns, rows, PIXEL_TYPE::FLT_6);
  std::mutex mutex;
  std::int64_t finished = 0;
  ForEachLine(rows, [&](std::int64_t row) {
    const std::vector<PAIR_SUMS> cells = SumRow(pair, looks, row, columns);
    interferogram.Write(row, Numbers(cells, [](const PAIR_SUMS& cell, auto& numbers) {
                          numbers.push_back(OrZero(cell, cell.cross.real() / cell.weight));
                          numbers.push_back(OrZero(cell, cell.cross.imag() / cell.weight));
                        }));
    coherence.Write(row, Numbers(cells, [](const PAIR_SUMS& cell, auto& numbers) {
                      numbers.push_back(OrZero(cell, cell.Coherence()));
                    }));
    first_amplitude.Write(row, Numbers(cells, [](const PAIR_SUMS& cell, auto& numbers) {
                            numbers.push_back(OrZero(cell, std::sqrt(cell.power_a / cell.weight)));
                          }));
    second_amplitude.Write(row, Numbers(cells, [](const PAIR_SUMS& cell, auto& numbers) {
                             numbers.push_back(OrZero(cell, std::sqrt(cell.power_b / cell.weight)));
                           }));
    const std::lock_guard lock(mutex);
    progress(static_cast<double>(++finished) / static_cast<double>(rows));
  });
}
