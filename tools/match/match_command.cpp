#include "match/match_command.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/figure_text.h"
#include "common/new_files.h"
#include "common/offset_record.h"
#include "common/progress_bar.h"
#include "common/raster_writer.h"
#include "match/image_match.h"

namespace {

struct MATCH_OPTIONS {
  std::string master;
  std::string slave;
  std::string prefix = "match";
  WINDOW_SHAPE shape;
  RANGE_AZIMUTH<int> posting = {64, 64};
  std::optional<RANGE_AZIMUTH<double>> start;
};

void CheckWithin(const char* name, const RANGE_AZIMUTH<int>& pair, int least, int most) {
  if (std::min(pair.range, pair.azimuth) < least || std::max(pair.range, pair.azimuth) > most) {
    throw CLI::ValidationError(
        name, "must be from " + std::to_string(least) + " to " + std::to_string(most));
  }
}

/// First pixel of a window around a position; the first of the image without one.
std::int64_t FirstPixel(const std::optional<double>& centre, int window) {
  constexpr double most = 1e9;
  if (!centre) {
    return 0;
  }
  const double first = *centre - 0.5 * (window - 1);
  if (!(first >= 0.0 && first <= most)) {
    throw CLI::ValidationError("--start", "leaves the first window partly outside the master");
  }
  return std::llround(first);
}

MATCH_GRID GridOf(const MATCH_OPTIONS& options, const RASTER_READER& master) {
  const auto& [window, search] = options.shape;
  const auto& start = options.start;
  return MATCH_GRID::Over(
      master, options.shape,
      {FirstPixel(start ? std::optional(start->range) : std::nullopt, window.range),
       FirstPixel(start ? std::optional(start->azimuth) : std::nullopt, window.azimuth)},
      options.posting);
}

void Write(const MATCHES& matches, const MATCH_OPTIONS& options, const RASTER_READER& master) {
  const std::filesystem::path prefix(options.prefix);
  const MATCH_GRID& grid = matches.grid;
  NEW_FILES files(prefix.parent_path());
  const auto write = [&](const char* ending, double MATCHED_SHIFT::*value) {
    WriteRealRaster(
        files.PathOf(prefix.filename().string() + ending), grid.count.range, grid.count.azimuth,
        PIXEL_TYPE::FLT_6, [&](std::int64_t row, std::span<double> values) {
          for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = matches.shifts[static_cast<std::size_t>(row) * values.size() + i].*value;
          }
        });
  };
  write("_range.ras", &MATCHED_SHIFT::range);
  write("_azimuth.ras", &MATCHED_SHIFT::azimuth);
  write("_snr.ras", &MATCHED_SHIFT::snr);
  const auto& window = options.shape.window;
  const OFFSET_RECORD record = {
      grid.posting,
      {static_cast<double>(grid.first.range) + 0.5 * (window.range - 1),
       static_cast<double>(grid.first.azimuth) + 0.5 * (window.azimuth - 1)},
      {static_cast<int>(master.Width()), static_cast<int>(master.Height())}};
  record.Write(files.PathOf(prefix.filename().string() + ".pool"));
  files.Finish();
}

double MedianOf(std::vector<double> values) {
  if (values.empty()) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void Print(const MATCHES& matches) {
  const auto& [coarse, cell, snr] = matches.coarse;
  std::vector<double> ratios;
  for (const MATCHED_SHIFT& shift : matches.shifts) {
    if (shift.snr > 0.0) {
      ratios.push_back(shift.snr);
    }
  }
  std::cout << std::fixed << std::setprecision(1)  //
            << "coarse shift: " << coarse.range << " samples, " << coarse.azimuth << " lines (snr "
            << FigureText(snr, 1) << ")\n"
            << "windows: " << matches.grid.count.range << " x " << matches.grid.count.azimuth
            << "\n"
            << "without a match: " << matches.shifts.size() - ratios.size() << "\n"
            << "median snr: " << FigureText(MedianOf(ratios), 1) << "\n";
}

void Match(const MATCH_OPTIONS& options) {
  constexpr int most = 1024;
  CheckWithin("--window", options.shape.window, 16, most);
  CheckWithin("--search", options.shape.search, 4, most);
  CheckWithin("--posting", options.posting, 1, 1 << 30);
  const RASTER_READER master(options.master);
  const RASTER_READER slave(options.slave);
  for (const RASTER_READER* image : {&master, &slave}) {
    if (!image->IsComplex()) {
      throw std::invalid_argument("pixels are not complex in " + image->Path() +
                                  "; slctool import --type c_flt_2 makes complex ones of others");
    }
  }
  const MATCH_GRID grid = GridOf(options, master);
  MATCHES matches;
  {
    PROGRESS_BAR bar;
    matches =
        MatchImages(master, slave, options.shape, grid, [&bar](double part) { bar.Show(part); });
  }
  Write(matches, options, master);
  Print(matches);
}

}  // namespace

void AddMatchCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "match", "Measure the shifts between two complex rasters by correlation of amplitudes");
  const auto options = std::make_shared<MATCH_OPTIONS>();
  command->add_option("MASTER", options->master, "Raster that the shifts start from")->required();
  command->add_option("SLAVE", options->slave, "Raster that they lead to")->required();
  command
      ->add_option("--out", options->prefix,
                   "Begin of the names PREFIX_range.ras, PREFIX_azimuth.ras, PREFIX_snr.ras, "
                   "PREFIX.pool")
      ->capture_default_str();
  command
      ->add_option("--window", options->shape.window,
                   "Samples and lines of a window, R,A or one number for both")
      ->capture_default_str();
  command
      ->add_option("--search", options->shape.search,
                   "Pixels around the expected shift within which to look for the real one, R,A")
      ->capture_default_str();
  command
      ->add_option("--posting", options->posting,
                   "Master samples and lines from window to window, R,A")
      ->capture_default_str();
  command->add_option("--start", options->start,
                      "Master sample and line of the first window's centre, X,Y; otherwise the "
                      "window lies in the corner");
  command->callback([options] { Match(*options); });
}
