#include "match/image_match.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <stdexcept>

#include "common/parallel_lines.h"
#include "common/polynomial_fit.h"

namespace {

constexpr MATCHED_SHIFT no_match = {NAN, NAN, 0.0};

/// What shift to expect at a place of the master.
struct EXPECTED_SHIFT {
  POLYNOMIAL range{};
  POLYNOMIAL azimuth{};

  RANGE_AZIMUTH<std::int64_t> At(double x, double y) const {
    return {std::llround(Evaluate(range, x, y)), std::llround(Evaluate(azimuth, x, y))};
  }
};

RANGE_AZIMUTH<double> Centre(const MATCH_GRID& grid, const WINDOW_SHAPE& shape, int column,
                             int row) {
  return {static_cast<double>(grid.first.range + std::int64_t{column} * grid.posting.range) +
              0.5 * (shape.window.range - 1),
          static_cast<double>(grid.first.azimuth + std::int64_t{row} * grid.posting.azimuth) +
              0.5 * (shape.window.azimuth - 1)};
}

std::vector<MATCHED_SHIFT> MatchAll(const RASTER_READER& master, const RASTER_READER& slave,
                                    const WINDOW_SHAPE& shape, const MATCH_GRID& grid,
                                    const EXPECTED_SHIFT& expected,
                                    const std::function<void(double)>& progress) {
  std::vector<MATCHED_SHIFT> shifts(static_cast<std::size_t>(grid.count.range) *
                                    static_cast<std::size_t>(grid.count.azimuth));
  std::mutex mutex;
  int finished = 0;
  ForEachLine(grid.count.azimuth, [&](std::int64_t row) {
    WINDOW_MATCH window(shape);
    for (int column = 0; column < grid.count.range; ++column) {
      const auto [x, y] = Centre(grid, shape, column, static_cast<int>(row));
      shifts[static_cast<std::size_t>(row * grid.count.range + column)] =
          window
              .Find(master, slave, grid.first.range + std::int64_t{column} * grid.posting.range,
                    grid.first.azimuth + row * grid.posting.azimuth, expected.At(x, y))
              .value_or(no_match);
    }
    const std::lock_guard lock(mutex);
    progress(static_cast<double>(++finished) / grid.count.azimuth);
  });
  return shifts;
}

/// The grid of at most 9 x 9 windows that fill the master evenly.
MATCH_GRID PilotGrid(const RASTER_READER& master, const WINDOW_SHAPE& shape) {
  constexpr int most = 9;
  const auto axis = [](std::int64_t length, int window) {
    const auto room = static_cast<int>(length - window);
    return std::max(room / (most - 1), std::max(window / 2, 1));
  };
  return MATCH_GRID::Over(
      master, shape, {0, 0},
      {axis(master.Width(), shape.window.range), axis(master.Height(), shape.window.azimuth)});
}

/// The coarse shift everywhere, or a surface through large windows where enough of them match.
EXPECTED_SHIFT ExpectShifts(const RASTER_READER& master, const RASTER_READER& slave,
                            const COARSE_SHIFT& coarse) {
  constexpr int window = 128;
  constexpr int least_search = 32;
  constexpr double sure_snr = 8.0;
  constexpr std::size_t enough = 20;
  constexpr double reject = 4.0;
  EXPECTED_SHIFT expected{{coarse.shift.range}, {coarse.shift.azimuth}};
  if (master.Width() < window || master.Height() < window) {
    return expected;
  }
  const WINDOW_SHAPE shape{{window, window},
                           {std::max(least_search, 2 * coarse.cell.range),
                            std::max(least_search, 2 * coarse.cell.azimuth)}};
  const MATCH_GRID grid = PilotGrid(master, shape);
  const auto shifts = MatchAll(master, slave, shape, grid, expected, [](double) {});
  std::vector<FIELD_POINT> range;
  std::vector<FIELD_POINT> azimuth;
  for (std::size_t i = 0; i < shifts.size(); ++i) {
    if (shifts[i].snr >= sure_snr) {
      const auto at = static_cast<int>(i);
      const auto [x, y] = Centre(grid, shape, at % grid.count.range, at / grid.count.range);
      range.push_back({x, y, shifts[i].range});
      azimuth.push_back({x, y, shifts[i].azimuth});
    }
  }
  if (range.size() >= enough) {
    expected = {FitPolynomial(range, reject).coefficients,
                FitPolynomial(azimuth, reject).coefficients};
  }
  return expected;
}

}  // namespace

MATCH_GRID MATCH_GRID::Over(const RASTER_READER& master, const WINDOW_SHAPE& shape,
                            const RANGE_AZIMUTH<std::int64_t>& first,
                            const RANGE_AZIMUTH<int>& posting) {
  const auto count = [](std::int64_t length, int window, std::int64_t begin, int step) {
    return begin + window > length ? 0 : static_cast<int>((length - window - begin) / step + 1);
  };
  const MATCH_GRID grid{
      first,
      posting,
      {count(master.Width(), shape.window.range, first.range, posting.range),
       count(master.Height(), shape.window.azimuth, first.azimuth, posting.azimuth)}};
  if (grid.count.range < 1 || grid.count.azimuth < 1) {
    throw std::invalid_argument("no window lies within " + master.Path());
  }
  return grid;
}

MATCHES MatchImages(const RASTER_READER& master, const RASTER_READER& slave,
                    const WINDOW_SHAPE& shape, const MATCH_GRID& grid,
                    const std::function<void(double)>& progress) {
  MATCHES matches{grid, FindCoarseShift(master, slave), {}};
  const EXPECTED_SHIFT expected = ExpectShifts(master, slave, matches.coarse);
  matches.shifts = MatchAll(master, slave, shape, grid, expected, progress);
  if (std::all_of(matches.shifts.begin(), matches.shifts.end(),
                  [](const MATCHED_SHIFT& shift) { return shift.snr == 0.0; })) {
    throw std::runtime_error("no window of " + master.Path() + " has a match in " + slave.Path());
  }
  return matches;
}
