#include "offsets/offsets_command.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <vector>

#include "common/progress_bar.h"
#include "common/raster_writer.h"
#include "offsets/dense_offsets.h"
#include "offsets/node_matrices.h"
#include "pool/parameter_pool_read_write_change.h"

namespace {

struct OFFSETS_OPTIONS {
  DENSE_OFFSETS_OPTIONS offsets;
  std::array<int, 2> size = {0, 0};  ///< samples and lines of the master; 0: as the offsets tell
  double reject = 4.0;
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
};

std::int64_t QuotientUp(std::int64_t a, std::int64_t b) {
  return (a + b - 1) / b;
}

/// How many columns and lines to step over so that six coefficients are not fitted to more offsets
/// than they are worth.
int StrideOf(const DENSE_OFFSETS& offsets) {
  constexpr std::int64_t enough = 1 << 18;
  int stride = 1;
  while (QuotientUp(offsets.Columns(), stride) * QuotientUp(offsets.Lines(), stride) > enough) {
    ++stride;
  }
  return stride;
}

void PrintFit(const char* name, const POLYNOMIAL_FIT& fit) {
  std::cout << name << " residual rms: " << fit.residual_rms << "\n"
            << name << " residual max: " << fit.residual_max << "\n"
            << name << " rejected: " << fit.rejected << " ("
            << 100.0 * static_cast<double>(fit.rejected) / static_cast<double>(fit.points)
            << " %)\n";
}

TRENDS FitTrends(const DENSE_OFFSETS& offsets, const OFFSETS_OPTIONS& options) {
  const int stride = StrideOf(offsets);
  std::vector<FIELD_POINT> range;
  std::vector<FIELD_POINT> azimuth;
  PROGRESS_BAR bar;
  offsets.ForEach(
      stride,
      [&](const DENSE_OFFSET& offset) {
        range.push_back({offset.x, offset.y, offset.range});
        azimuth.push_back({offset.x, offset.y, offset.azimuth});
      },
      [&bar](double part) { bar.Show(part); });
  const std::int64_t looked_at =
      QuotientUp(offsets.Columns(), stride) * QuotientUp(offsets.Lines(), stride);
  const TRENDS trends = {FitPolynomial(range, options.reject),
                         FitPolynomial(azimuth, options.reject)};
  std::cout << "offsets looked at for the polynomials: " << looked_at << "\n"
            << "gaps among them: " << looked_at - trends.range.points << "\n";
  PrintFit("range", trends.range);
  PrintFit("azimuth", trends.azimuth);
  return trends;
}

void FillWith(NODE_MATRICES& matrices, const DENSE_OFFSETS& offsets, const TRENDS& trends,
              double max_deviation) {
  const auto departs = [&](const POLYNOMIAL_FIT& trend, const DENSE_OFFSET& offset, double value) {
    return std::abs(value - Evaluate(trend.coefficients, offset.x, offset.y)) > max_deviation;
  };
  constexpr int every_one = 1;
  std::int64_t dropped = 0;
  PROGRESS_BAR bar;
  offsets.ForEach(
      every_one,
      [&](const DENSE_OFFSET& offset) {
        if (departs(trends.range, offset, offset.range) ||
            departs(trends.azimuth, offset, offset.azimuth)) {
          ++dropped;
        } else {
          matrices.Add(offset.x, offset.y, offset.range, offset.azimuth);
        }
      },
      [&bar](double part) { bar.Show(part); });
  std::cout << "offsets beyond the deviation: " << dropped << "\n";
}

std::int64_t MasterLength(int given, double first, double posting, int n_offsets) {
  return given > 0 ? given : std::llround(first + posting * n_offsets);
}

void PrintShare(const char* name, std::int64_t nodes, std::int64_t all) {
  std::cout << name << ": " << nodes << " ("
            << 100.0 * static_cast<double>(nodes) / static_cast<double>(all) << " %)\n";
}

void CheckMatrixPaths(const DENSE_OFFSETS& offsets, const OFFSETS_OPTIONS& options) {
  for (const std::string& path : {options.range_map, options.azimuth_map}) {
    if (offsets.AreMadeOf(path)) {
      throw std::invalid_argument(path + " belongs to the offsets; name the matrices otherwise");
    }
  }
  if (options.range_map == options.azimuth_map) {
    throw std::invalid_argument("both matrices have the name " + options.range_map);
  }
}

using POOL = PARAMETER_POOL_READ_WRITE_CHANGE;

void WriteMatrices(const DENSE_OFFSETS& offsets, const OFFSETS_OPTIONS& options, POOL* pool) {
  CheckMatrixPaths(offsets, options);
  const auto& [first, posting] = std::pair(options.offsets.first, options.offsets.posting);
  const std::int64_t width = MasterLength(options.size[0], first[0], posting[0], offsets.Columns());
  const std::int64_t height = MasterLength(options.size[1], first[1], posting[1], offsets.Lines());
  const NODE_AXIS x = NODE_AXIS::For(width, options.subsampling[0], posting[0]);
  const NODE_AXIS y = NODE_AXIS::For(height, options.subsampling[1], posting[1]);
  const TRENDS trends = FitTrends(offsets, options);
  NODE_MATRICES matrices(x, y, trends.range.coefficients, trends.azimuth.coefficients);
  FillWith(matrices, offsets, trends, options.max_deviation);
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
  PrintShare("filled in gaps", counts.in_gaps, counts.nodes);
  PrintShare("filled past the edges", counts.past_edges, counts.nodes);

  if (pool != nullptr) {
    pool->Write("mapping_format", STRING("matrix"));
    pool->Write("shift_matrices_subsampling_rg", options.subsampling[0]);
    pool->Write("shift_matrices_subsampling_az", options.subsampling[1]);
    pool->Update();
  }
}

ARRAY<double> VectorOf(const POLYNOMIAL& coefficients) {
  ARRAY<double> vector;
  if (vector.Create(RANGE<int>(0, static_cast<int>(coefficients.size()))) != CONTAINER_OK) {
    throw std::bad_alloc();
  }
  std::copy(coefficients.begin(), coefficients.end(), vector.Origin());
  return vector;
}

void PrintPolynomial(const char* name, const POLYNOMIAL& coefficients) {
  std::cout << name << " polynomial:" << std::setprecision(12);
  for (const double coefficient : coefficients) {
    std::cout << " " << coefficient;
  }
  std::cout << "\n";
}

void WritePolynomials(const DENSE_OFFSETS& offsets, const OFFSETS_OPTIONS& options, POOL& pool) {
  const TRENDS trends = FitTrends(offsets, options);
  PrintPolynomial("range", trends.range.coefficients);
  PrintPolynomial("azimuth", trends.azimuth.coefficients);
  pool.Write("mapping_format", STRING("polynomial"));
  pool.Write("respl_poly_rg", VectorOf(trends.range.coefficients));
  pool.Write("respl_poly_az", VectorOf(trends.azimuth.coefficients));
  pool.Update();
}

void MakeMapping(const OFFSETS_OPTIONS& options) {
  const DENSE_OFFSETS offsets(options.offsets);
  const bool polynomial = !options.polynomial_pool.empty();
  const std::string& pool_path = polynomial ? options.polynomial_pool : options.matrix_pool;
  // Opened first: offsets are not read for a pool that can not be written.
  const auto pool = pool_path.empty() ? nullptr : std::make_unique<POOL>(pool_path.c_str());
  if (polynomial) {
    WritePolynomials(offsets, options, *pool);
  } else {
    WriteMatrices(offsets, options, pool.get());
  }
}

/// An option of two numbers, for range and azimuth.
template <class T>
CLI::Option* AddPair(CLI::App& command, const char* name, std::array<T, 2>& pair,
                     const char* description) {
  return command.add_option(name, pair, description)->delimiter(',');
}

void AddInputOptions(CLI::App& command, DENSE_OFFSETS_OPTIONS& offsets) {
  command.add_option("RANGE", offsets.range, "GDAL raster of range offsets [samples]")->required();
  command.add_option("AZIMUTH", offsets.azimuth, "GDAL raster of azimuth offsets [lines]")
      ->required();
  AddPair(command, "--band", offsets.bands, "Bands of RANGE and AZIMUTH, as in 2,1");
  AddPair(command, "--posting", offsets.posting, "Master samples and lines from offset to offset")
      ->check(CLI::PositiveNumber);
  AddPair(command, "--first", offsets.first, "Master sample and line of the first offset");
  command.add_option("--nodata", offsets.no_data, "Value of gaps, besides NaN");
  command.add_flag("--negate", offsets.negate,
                   "The offsets are master minus slave, not slave minus master");
}

void AddResultOptions(CLI::App& command, OFFSETS_OPTIONS& options) {
  CLI::App& result = *command.add_option_group("Result", "One of these");
  AddPair(result, "--subsampling", options.subsampling,
          "Make matrices with a node every so many master samples and lines")
      ->check(CLI::PositiveNumber);
  result.add_option("--polynomial", options.polynomial_pool,
                    "Fit polynomials and write them into this pool");
  result.require_option(1);
  command.add_option("--range-map", options.range_map, "Matrix of the range shifts to make")
      ->capture_default_str();
  command.add_option("--azimuth-map", options.azimuth_map, "Matrix of the azimuth shifts to make")
      ->capture_default_str();
  command.add_option("--pool", options.matrix_pool, "Pool that is told the subsampling");
  AddPair(command, "--size", options.size, "Samples and lines of the master")
      ->check(CLI::PositiveNumber);
  command
      .add_option("--reject", options.reject,
                  "Standard deviations from a polynomial at which an offset is an outlier of it")
      ->check(CLI::PositiveNumber)
      ->capture_default_str();
  command
      .add_option("--max-deviation", options.max_deviation,
                  "Pixels from the polynomials at which an offset is a gap of the matrices")
      ->check(CLI::PositiveNumber);
}

}  // namespace

void AddOffsetsCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "offsets", "Make mapping matrices, or polynomials, of dense range and azimuth offsets");
  const auto options = std::make_shared<OFFSETS_OPTIONS>();
  AddInputOptions(*command, options->offsets);
  AddResultOptions(*command, *options);
  command->callback([options] { MakeMapping(*options); });
}
