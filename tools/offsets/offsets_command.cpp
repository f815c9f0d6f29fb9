#include "offsets/offsets_command.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <vector>

#include "base/same_file.h"
#include "common/number_checks.h"
#include "common/pool_values.h"
#include "common/progress_bar.h"
#include "common/raster_writer.h"
#include "offsets/clean_offsets.h"
#include "offsets/node_matrices.h"
#include "offsets/raster_offsets.h"
#include "offsets/text_offsets.h"
#include "pool/parameter_pool_read_write_change.h"

namespace {

struct OFFSETS_OPTIONS {
  RASTER_OFFSETS_OPTIONS rasters;
  TEXT_OFFSETS_OPTIONS table;
  std::array<int, 2> size = {0, 0};  ///< samples and lines of the master; 0: as the offsets tell
  CLEANING cleaning;
  std::optional<double> least_snr;  ///< without one as the source has it
  double max_deviation = HUGE_VAL;

  std::array<int, 2> subsampling = {0, 0};
  std::string range_map = "rg_map.ras";
  std::string azimuth_map = "az_map.ras";
  std::string matrix_pool;

  std::string polynomial_pool;
};

struct TRENDS {
  POLYNOMIAL_FIT range;
  POLYNOMIAL_FIT azimuth;
  double median_snr = 1.0;
};

std::int64_t QuotientUp(std::int64_t a, std::int64_t b) {
  return (a + b - 1) / b;
}

/// How many columns and rows to step over so that six coefficients are not fitted to more offsets
/// than they are worth.
int StrideOf(const OFFSET_SOURCE& offsets) {
  constexpr std::int64_t enough = 1 << 18;
  int stride = 1;
  while (QuotientUp(offsets.Columns(), stride) * QuotientUp(offsets.Rows(), stride) > enough) {
    ++stride;
  }
  return stride;
}

void PrintShare(const char* name, std::int64_t part, std::int64_t all) {
  std::cout << name << ": " << part << " ("
            << 100.0 * static_cast<double>(part) / static_cast<double>(all) << " %)\n";
}

void PrintFit(const char* name, const POLYNOMIAL_FIT& fit) {
  std::cout << name << " residual rms: " << fit.residual_rms << "\n"
            << name << " residual max: " << fit.residual_max << "\n"
            << name << " rejected: " << fit.rejected << " ("
            << 100.0 * static_cast<double>(fit.rejected) / static_cast<double>(fit.points)
            << " %)\n";
}

TRENDS FitTrends(const OFFSET_SOURCE& offsets, const CLEANING& cleaning) {
  const int stride = StrideOf(offsets);
  std::vector<FIELD_POINT> range;
  std::vector<FIELD_POINT> azimuth;
  std::vector<double> ratios;
  std::int64_t looked_at = 0;
  PROGRESS_BAR bar;
  for (int row = 0; row < offsets.Rows(); row += stride) {
    for (const OFFSET& offset : offsets.Row(row)) {
      if (offset.column % stride != 0) {
        continue;
      }
      ++looked_at;
      if (!offset.IsGap() && offset.snr > 0.0 && offset.snr >= cleaning.least_snr) {
        range.push_back({offset.x, offset.y, offset.range});
        azimuth.push_back({offset.x, offset.y, offset.azimuth});
        ratios.push_back(offset.snr);
      }
    }
    bar.Show(static_cast<double>(row) / offsets.Rows());
  }
  TRENDS trends = {FitPolynomial(range, cleaning.reject), FitPolynomial(azimuth, cleaning.reject)};
  const auto middle = ratios.begin() + static_cast<std::ptrdiff_t>(ratios.size() / 2);
  std::nth_element(ratios.begin(), middle, ratios.end());
  trends.median_snr = *middle;
  std::cout << "offsets looked at for the polynomials: " << looked_at << "\n"
            << "gaps among them: " << looked_at - trends.range.points << "\n";
  PrintFit("range", trends.range);
  PrintFit("azimuth", trends.azimuth);
  return trends;
}

void Warn(const std::string& text) {
  std::cerr << "slctool: warning: " << text << "\n";
}

void Print(const CLEANING_COUNTS& counts, std::int64_t beyond_deviation) {
  constexpr double many = 0.05;
  std::cout << "offsets: " << counts.measured << "\n";
  PrintShare("too low an snr", counts.weak, counts.measured);
  PrintShare("outliers among their neighbours", counts.outliers, counts.measured);
  std::cout << "replaced by their neighbours: " << counts.predicted << "\n"
            << "beyond the deviation: " << beyond_deviation << "\n";
  if (static_cast<double>(counts.outliers) > many * static_cast<double>(counts.measured)) {
    Warn("more than 5 % of the offsets are outliers; look at them, or raise --min-snr");
  }
}

void FillWith(NODE_MATRICES& matrices, const OFFSET_SOURCE& offsets, const TRENDS& trends,
              const OFFSETS_OPTIONS& options) {
  const auto departs = [&](const POLYNOMIAL_FIT& trend, const OFFSET& offset, double value) {
    return std::abs(value - Evaluate(trend.coefficients, offset.x, offset.y)) >
           options.max_deviation;
  };
  std::int64_t dropped = 0;
  CLEANING_COUNTS counts;
  {
    PROGRESS_BAR bar;
    counts = ForEachCleanOffset(
        offsets, options.cleaning,
        [&](const OFFSET& offset) {
          if (departs(trends.range, offset, offset.range) ||
              departs(trends.azimuth, offset, offset.azimuth)) {
            ++dropped;
          } else {
            // The variance of a shift goes with 1 / snr^2. Above the median all count the same, so
            // that a few strong ones do not draw the nodes around to themselves.
            const double ratio = std::min(offset.snr / trends.median_snr, 1.0);
            matrices.Add(offset.x, offset.y, offset.range, offset.azimuth, ratio * ratio);
          }
        },
        [&bar](double part) { bar.Show(part); });
  }
  Print(counts, dropped);
}

/// Samples and lines of the master.
RANGE_AZIMUTH<int> MasterSize(const OFFSET_SOURCE& offsets, const OFFSETS_OPTIONS& options) {
  const RANGE_AZIMUTH<int> size = options.size[0] > 0
                                      ? RANGE_AZIMUTH<int>{options.size[0], options.size[1]}
                                      : offsets.MasterSize();
  if (size.range < 1 || size.azimuth < 1) {
    throw std::invalid_argument("the offsets do not tell the size of the master: give --size");
  }
  return size;
}

void PrintNodes(const NODE_COUNTS& counts) {
  PrintShare("filled in gaps", counts.in_gaps, counts.nodes);
  PrintShare("filled past the edges", counts.past_edges, counts.nodes);
  if (2 * (counts.in_gaps + counts.past_edges) > counts.nodes) {
    Warn(
        "most nodes have no offsets near them and follow from the polynomials and distant ones; "
        "are --posting, --first and --size right?");
  }
}

/// No two of the files that are written may be one, and none may be an input.
void CheckOutputs(const OFFSET_SOURCE& offsets, const std::vector<std::string>& outputs) {
  for (auto output = outputs.begin(); output != outputs.end(); ++output) {
    if (offsets.IsMadeOf(*output)) {
      throw std::invalid_argument(*output + " belongs to the offsets; name the results otherwise");
    }
    if (std::any_of(outputs.begin(), output,
                    [&](const std::string& other) { return IsSamePath(*output, other); })) {
      throw std::invalid_argument("two results have the name " + *output);
    }
  }
}

using POOL = PARAMETER_POOL_READ_WRITE_CHANGE;

void WriteMatrices(const OFFSET_SOURCE& offsets, const OFFSETS_OPTIONS& options, POOL* pool) {
  const auto [width, height] = MasterSize(offsets, options);
  const NODE_AXIS x = NODE_AXIS::For(width, options.subsampling[0], offsets.Posting().range);
  const NODE_AXIS y = NODE_AXIS::For(height, options.subsampling[1], offsets.Posting().azimuth);
  const TRENDS trends = FitTrends(offsets, options.cleaning);
  NODE_MATRICES matrices(x, y, trends.range.coefficients, trends.azimuth.coefficients);
  FillWith(matrices, offsets, trends, options);
  const NODE_COUNTS counts = matrices.Finish(width, height);

  const auto write = [&](const std::string& path,
                         double (NODE_MATRICES::*shift)(int, int) const noexcept) {
    WriteRealRaster(path, x.n_nodes, y.n_nodes, PIXEL_TYPE::FLT_6,
                    [&](std::int64_t row, std::span<double> values) {
                      for (int column = 0; column < x.n_nodes; ++column) {
                        values[static_cast<std::size_t>(column)] =
                            (matrices.*shift)(column, static_cast<int>(row));
                      }
                    });
  };
  write(options.range_map, &NODE_MATRICES::Range);
  write(options.azimuth_map, &NODE_MATRICES::Azimuth);
  std::cout << "master: " << width << " x " << height << "\n"
            << "nodes: " << x.n_nodes << " x " << y.n_nodes << "\n";
  PrintNodes(counts);

  if (pool != nullptr) {
    pool->Write("mapping_format", STRING("matrix"));
    pool->Write("shift_matrices_subsampling_rg", options.subsampling[0]);
    pool->Write("shift_matrices_subsampling_az", options.subsampling[1]);
    pool->Update();
  }
}

void PrintPolynomial(const char* name, const POLYNOMIAL& coefficients) {
  std::cout << name << " polynomial:" << std::setprecision(12);
  for (const double coefficient : coefficients) {
    std::cout << " " << coefficient;
  }
  std::cout << "\n";
}

void WritePolynomials(const OFFSET_SOURCE& offsets, const OFFSETS_OPTIONS& options, POOL& pool) {
  const TRENDS trends = FitTrends(offsets, options.cleaning);
  PrintPolynomial("range", trends.range.coefficients);
  PrintPolynomial("azimuth", trends.azimuth.coefficients);
  pool.Write("mapping_format", STRING("polynomial"));
  pool.Write("respl_poly_rg", VectorOf(trends.range.coefficients));
  pool.Write("respl_poly_az", VectorOf(trends.azimuth.coefficients));
  pool.Update();
}

std::unique_ptr<OFFSET_SOURCE> OpenOffsets(const OFFSETS_OPTIONS& options) {
  if (!options.rasters.azimuth.empty()) {
    return std::make_unique<RASTER_OFFSETS>(options.rasters);
  }
  return std::make_unique<TEXT_OFFSETS>(options.table);
}

void MakeMapping(OFFSETS_OPTIONS options) {
  options.table.path = options.rasters.range;
  options.table.negate = options.rasters.negate;
  const auto offsets = OpenOffsets(options);
  options.cleaning.least_snr = options.least_snr.value_or(offsets->LeastSnr());
  const bool polynomial = !options.polynomial_pool.empty();
  const std::string& pool_path = polynomial ? options.polynomial_pool : options.matrix_pool;
  std::vector<std::string> outputs;
  if (!polynomial) {
    outputs = {options.range_map, options.azimuth_map};
  }
  if (!pool_path.empty()) {
    outputs.push_back(pool_path);
  }
  CheckOutputs(*offsets, outputs);
  // Opened first: offsets are not read for a pool that can not be written.
  const auto pool = pool_path.empty() ? nullptr : std::make_unique<POOL>(pool_path.c_str());
  if (polynomial) {
    WritePolynomials(*offsets, options, *pool);
  } else {
    WriteMatrices(*offsets, options, pool.get());
  }
}

/// An option of two numbers, for range and azimuth.
template <class PAIR>
CLI::Option* AddPair(CLI::App& command, const char* name, PAIR& pair, const char* description) {
  return command.add_option(name, pair, description)->delimiter(',');
}

const CLI::Validator finite(
    [](std::string& text) {
      double number = 0.0;
      return CLI::detail::lexical_cast(text, number) && std::isfinite(number)
                 ? std::string()
                 : "not a finite number: " + text;
    },
    "FINITE");

void AddInputOptions(CLI::App& command, OFFSETS_OPTIONS& options) {
  RASTER_OFFSETS_OPTIONS& rasters = options.rasters;
  command
      .add_option("RANGE", rasters.range,
                  "Raster of range offsets [samples]; alone, a table of text")
      ->required();
  command.add_option("AZIMUTH", rasters.azimuth, "Raster of azimuth offsets [lines]");
  command.add_option("--snr", rasters.snr, "Raster of the signal-to-noise ratios, for weights");
  command
      .add_option("--columns", options.table.columns,
                  "What the columns of a table are: these names in any order, - to skip one")
      ->capture_default_str();
  AddPair(command, "--band", rasters.bands, "Bands of RANGE and AZIMUTH, as in 2,1");
  AddPair(command, "--posting", rasters.posting,
          "Master samples and lines from offset to offset of rasters")
      ->check(positive_number);
  AddPair(command, "--first", rasters.first,
          "Master sample and line of the first offset of rasters")
      ->check(finite);
  command.add_option("--nodata", rasters.no_data, "Value of gaps, besides NaN");
  command.add_flag("--negate", rasters.negate,
                   "The offsets are master minus slave, not slave minus master");
}

void AddResultOptions(CLI::App& command, OFFSETS_OPTIONS& options) {
  CLI::App& result = *command.add_option_group("Result", "One of these");
  AddPair(result, "--subsampling", options.subsampling,
          "Make matrices with a node every so many master samples and lines")
      ->check(positive_number);
  result.add_option("--polynomial", options.polynomial_pool,
                    "Fit polynomials and write them into this pool");
  result.require_option(1);
  command.add_option("--range-map", options.range_map, "Matrix of the range shifts to make")
      ->capture_default_str();
  command.add_option("--azimuth-map", options.azimuth_map, "Matrix of the azimuth shifts to make")
      ->capture_default_str();
  command.add_option("--pool", options.matrix_pool, "Pool that is told the subsampling");
  AddPair(command, "--size", options.size, "Samples and lines of the master")
      ->check(positive_number);
  command
      .add_option(
          "--reject", options.cleaning.reject,
          "Standard deviations, from its neighbours or a polynomial, at which an offset is an "
          "outlier")
      ->check(positive_number)
      ->capture_default_str();
  command.add_flag("--keep-outliers", options.cleaning.keep_outliers,
                   "Do not compare offsets with their neighbours");
  command.add_option("--min-snr", options.least_snr,
                     "Offsets of a lower SNR are gaps; 5 for those of slctool match");
  command
      .add_option("--max-deviation", options.max_deviation,
                  "Pixels from the polynomials at which an offset is a gap of the matrices")
      ->check(positive_number);
}

}  // namespace

void AddOffsetsCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "offsets", "Make mapping matrices, or polynomials, of dense range and azimuth offsets");
  const auto options = std::make_shared<OFFSETS_OPTIONS>();
  AddInputOptions(*command, *options);
  AddResultOptions(*command, *options);
  command->callback([options] { MakeMapping(*options); });
}
