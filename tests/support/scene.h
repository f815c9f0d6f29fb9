#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "raster/pixel_type.h"
#include "support/grid.h"
#include "support/pool_text.h"
#include "support/raster_file.h"

/// The two stored components of a complex pixel, as bit patterns.
struct RAW_PIXEL {
  std::uint16_t re = 0;
  std::uint16_t im = 0;
  bool operator==(const RAW_PIXEL&) const = default;
};

/// Shifts at the nodes of a coarse grid over the master, one node every so many samples (range)
/// and lines (azimuth).
struct MATRIX_MAPPING_DATA {
  GRID<float> range;
  GRID<float> azimuth;
  int range_subsampling = 1;
  int azimuth_subsampling = 1;
};

/// Coefficients of 1, line, sample, sample * line, line^2, sample^2.
struct POLYNOMIAL_MAPPING_DATA {
  std::vector<double> range;
  std::vector<double> azimuth;
};

/// Timing and Doppler centroid of the slave, in seconds and hertz.
struct DOPPLER_DATA {
  double prf = 1000.0;
  double range_sampling_frequency = 2e7;
  double oversampling = 1.0;
  double first_range_time = 0.005;
  double first_azimuth_time = 0.0;
  std::vector<double> azimuth_times = {0.0};    ///< of the polynomials
  std::vector<double> reference_times = {0.0};  ///< range times that they are expanded around
  GRID<double> coefficients{1, 1};              ///< line: polynomial, column: degree
};

/// Everything that a run of the program takes.
struct SCENE {
  PIXEL_TYPE pixel_type = PIXEL_TYPE::C_INT_16;
  GRID<RAW_PIXEL> slave;
  std::optional<GRID<std::uint8_t>> mask;
  int n_samples = 0;
  int n_lines = 0;
  std::variant<MATRIX_MAPPING_DATA, POLYNOMIAL_MAPPING_DATA> mapping;
  std::string kernel_type = "truncated_sinc_kaiser_weight";
  double kernel_coefficient = 2.5;
  int kernel_length = 8;
  int subpix_positions = 64;
  DOPPLER_DATA doppler;
  std::string imaging_mode = "SM";
  std::optional<int> ps_mode;

  unsigned RasterType() const;
};

/// A small ordinary scene: complex integers with a mask, shifted by a matrix on nodes 8 pixels
/// apart, with a Doppler centroid and a rate. About 60 x 50 pixels of it can be computed.
SCENE OrdinaryScene();

/// Any scene. The seed counts through pixel type, mapping, kernel, mask, and rate term, all else is
/// drawn, extremes included: NaN and infinite pixels, saturation, shifts far outside, NaN shifts,
/// whole shifts.
SCENE RandomScene(unsigned seed);

/// So many seeds in a row meet all combinations of what a random scene counts through.
unsigned SceneCombinations();

POOL_TEXT InsarPool(const SCENE& scene);
POOL_TEXT SlavePool(const SCENE& scene);

/// Writes the scene into a directory: "slave.ras", "mask.ras" (if it has one), "rg.map", "az.map"
/// (for a matrix), "insar.pool", "slave.pool". Returns the parameters of a run on these files with
/// the outputs "out.ras" and "out_mask.ras", the INSAR pool as log pool, and the mapping format
/// from the pool.
std::map<std::string, std::string> WriteSceneFiles(const SCENE& scene,
                                                   const std::filesystem::path& directory);
