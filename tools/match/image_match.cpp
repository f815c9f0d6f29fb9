#include "match/image_match.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <optional>
#include <stdexcept>

#include "base/parallel_lines.h"
#include "check_run/image_centroid.h"
#include "common/polynomial_fit.h"

namespace {

constexpr double no_shift = NAN;

MATCHED_SHIFT NoMatch() {
  return {no_shift, no_shift, 0.0, {}};
}

/// What shift to expect at a place of the master.
struct EXPECTED_SHIFT {
  POLYNOMIAL range{};
  POLYNOMIAL azimuth{};

  RANGE_AZIMUTH<std::int64_t> At(double x, double y) const {
    return {std::llround(Evaluate(range, x, y)), std::llround(Evaluate(azimuth, x, y))};
  }
};

/// Of the window that stands at this place of a list row by row.
RANGE_AZIMUTH<double> Centre(const MATCH_GRID& grid, const WINDOW_SHAPE& shape, std::size_t index) {
  const auto columns = static_cast<std::size_t>(grid.count.range);
  const std::size_t row = index / columns;
  return {static_cast<double>(grid.first.range) +
              static_cast<double>(index % columns) * grid.posting.range +
              0.5 * (shape.window.range - 1),
          static_cast<double>(grid.first.azimuth) +
              static_cast<double>(row) * grid.posting.azimuth + 0.5 * (shape.window.azimuth - 1)};
}

std::vector<MATCHED_SHIFT> MatchAll(const IMAGE_PAIR& pair, const WINDOW_SHAPE& shape,
                                    const MATCH_GRID& grid, const EXPECTED_SHIFT& expected,
                                    const std::function<void(double)>& progress) {
  std::vector<MATCHED_SHIFT> shifts(static_cast<std::size_t>(grid.count.range) *
                                    static_cast<std::size_t>(grid.count.azimuth));
  std::mutex mutex;
  int finished = 0;
  ForEachLine(grid.count.azimuth, [&](std::int64_t row) {
    WINDOW_MATCH window(shape, pair);
    for (int column = 0; column < grid.count.range; ++column) {
      const auto index = static_cast<std::size_t>(row * grid.count.range + column);
      const auto [x, y] = Centre(grid, shape, index);
      shifts[index] = window
                          .Find(grid.first.range + std::int64_t{column} * grid.posting.range,
                                grid.first.azimuth + row * grid.posting.azimuth, expected.At(x, y))
                          .value_or(NoMatch());
    }
    const std::lock_guard lock(mutex);
    progress(static_cast<double>(++finished) / grid.count.azimuth);
  });
  return shifts;
}

/// Surfaces through the sure ones of some shifts; nothing when these are too few.
std::optional<EXPECTED_SHIFT> FitSurfaces(const std::vector<MATCHED_SHIFT>& shifts,
                                          const WINDOW_SHAPE& shape, const MATCH_GRID& grid) {
  constexpr double sure_snr = 8.0;
  constexpr std::size_t enough = 20;
  constexpr std::size_t more_than_enough = 1 << 16;
  constexpr double reject = 4.0;
  std::vector<FIELD_POINT> range;
  std::vector<FIELD_POINT> azimuth;
  for (std::size_t i = 0; i < shifts.size(); i += shifts.size() / more_than_enough + 1) {
    const MATCHED_SHIFT& shift = shifts[i];
    if (shift.snr >= sure_snr) {
      const auto [x, y] = Centre(grid, shape, i);
      range.push_back({x + shift.features.range, y + shift.features.azimuth, shift.range});
      azimuth.push_back({x + shift.features.range, y + shift.features.azimuth, shift.azimuth});
    }
  }
  if (range.size() < enough) {
    return std::nullopt;
  }
  return EXPECTED_SHIFT{FitPolynomial(range, reject).coefficients,
                        FitPolynomial(azimuth, reject).coefficients};
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

/// Of the whole image [turns a line]; 0 where the data do not tell it.
double CentroidOf(const RASTER_READER& image) {
  constexpr std::int64_t most_pairs = 4096;
  const IMAGE_LINES lines{
      .n_samples = image.Width(),
      .n_lines = image.Height(),
      .read = [&image](std::int64_t line, std::span<std::complex<double>> values) {
        image.ReadLine(line, 0, values);
      }};
  const IMAGE_CENTROID centroid = MeasureCentroid(lines, nullptr, most_pairs);
  return centroid.IsMeasured() ? centroid.data.Turns() : 0.0;
}

/// The coarse shift everywhere, or a surface through large windows where enough of them match.
EXPECTED_SHIFT ExpectShifts(const IMAGE_PAIR& pair, const COARSE_SHIFT& coarse) {
  constexpr int window = 128;
  constexpr int least_search = 32;
  const EXPECTED_SHIFT expected{{coarse.shift.range}, {coarse.shift.azimuth}};
  if (pair.master.Width() < window || pair.master.Height() < window) {
    return expected;
  }
  const WINDOW_SHAPE shape{{window, window},
                           {std::max(least_search, 2 * coarse.cell.range),
                            std::max(least_search, 2 * coarse.cell.azimuth)}};
  const MATCH_GRID grid = PilotGrid(pair.master, shape);
  const auto shifts = MatchAll(pair, shape, grid, expected, [](double) {});
  return FitSurfaces(shifts, shape, grid).value_or(expected);
}

/// What a surface has more at a distance than here, by its slopes here.
double Rise(const POLYNOMIAL& surface, double x, double y, const RANGE_AZIMUTH<double>& distance) {
  const auto& c = surface;
  return distance.range * (c[2] + c[3] * y + 2.0 * c[5] * x) +
         distance.azimuth * (c[1] + c[3] * x + 2.0 * c[4] * y);
}

/// Where the shift changes over the window, the one that is found belongs to the window's features,
/// which are not always in its middle: one bright target is enough.
void MoveToCentres(std::vector<MATCHED_SHIFT>& shifts, const WINDOW_SHAPE& shape,
                   const MATCH_GRID& grid, const EXPECTED_SHIFT& expected) {
  for (std::size_t i = 0; i < shifts.size(); ++i) {
    const auto [x, y] = Centre(grid, shape, i);
    MATCHED_SHIFT& shift = shifts[i];
    shift.range -= Rise(expected.range, x, y, shift.features);
    shift.azimuth -= Rise(expected.azimuth, x, y, shift.features);
  }
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
  const IMAGE_PAIR pair{master, slave, CentroidOf(master), CentroidOf(slave)};
  const EXPECTED_SHIFT expected = ExpectShifts(pair, matches.coarse);
  matches.shifts = MatchAll(pair, shape, grid, expected, progress);
  if (std::all_of(matches.shifts.begin(), matches.shifts.end(),
                  [](const MATCHED_SHIFT& shift) { return shift.snr == 0.0; })) {
    throw std::runtime_error("no window of " + master.Path() + " has a match in " + slave.Path());
  }
  MoveToCentres(matches.shifts, shape, grid,
                FitSurfaces(matches.shifts, shape, grid).value_or(expected));
  return matches;
}
