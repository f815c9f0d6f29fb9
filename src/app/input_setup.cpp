#include "app/input_setup.h"

#include <cmath>

#include "base/error_exception.h"
#include "base/memory_for.h"
#include "logging/logging.h"
#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"

namespace {

using enum LOGGING_LEVEL_T;
using BASIC::TYPES::MappingFormatType;

constexpr int read_only = 0;

struct SUBSAMPLING {
  int range = 0;
  int azimuth = 0;
};

SUBSAMPLING ReadSubsampling(PARAMETER_POOL& pool) {
  constexpr const char* range_key = "shift_matrices_subsampling_rg";
  constexpr const char* azimuth_key = "shift_matrices_subsampling_az";
  SUBSAMPLING subsampling;
  if (pool.Exists(range_key) || pool.Exists(azimuth_key)) {
    pool.Read(range_key, subsampling.range);
    pool.Read(azimuth_key, subsampling.azimuth);
  } else {
    pool.Read("shift_matrices_subsampling", subsampling.range);
    subsampling.azimuth = subsampling.range;
  }
  return subsampling;
}

/// Throws ERROR_DATA for a NaN, with which the whole output would hold nothing; pools hold no
/// infinities.
double ReadTime(PARAMETER_POOL& pool, const char* key) {
  double time = 0.0;
  pool.Read(key, time);
  if (std::isnan(time)) {
    Log() << ALARM << "not a number: " << key;
    throw ERROR_DATA();
  }
  return time;
}

}  // namespace

void BuildKernel(const KERNEL_PARAMETERS& parameters, RESAMPLE_INPUT& input) {
  Log().Message(INFO, "  -  shift raster = %d", parameters.subpix_positions);
  input.kernel.InitKernel(parameters.type, parameters.length, parameters.subpix_positions,
                          static_cast<float>(parameters.coefficient));
}

void MapSlave(const std::string& path, RESAMPLE_INPUT& input) {
  WithMemoryFor("raster", path, [&] { input.slave.Map(path.c_str(), read_only); });
  Log().Message(DEBUG, "   - Pixel type : %d", static_cast<int>(input.slave.PixelType()));
  input.CheckSlave();
}

void MapMask(const std::string& path, RESAMPLE_INPUT& input) {
  WithMemoryFor("raster", path, [&] { input.mask.Map(path.c_str(), read_only); });
  if (input.mask.BytesPerPixel() != 1) {
    Log() << ALARM << "mask is not one byte a pixel: " << path;
    throw ERROR_DATA();
  }
}

void OpenMapping(const MAPPING_PARAMETERS& parameters, PARAMETER_POOL& insar_pool,
                 RESAMPLE_INPUT& input) {
  switch (parameters.format.Id()) {
    case MappingFormatType::MATRIX: {
      const SUBSAMPLING subsampling = ReadSubsampling(insar_pool);
      input.mapping =
          std::make_unique<MAPPING_MATRIX>(parameters.rg_file.c_str(), parameters.az_file.c_str(),
                                           subsampling.range, subsampling.azimuth);
      break;
    }
    case MappingFormatType::POLYNOMIAL:
      input.mapping = std::make_unique<MAPPING_POLYNOMIAL>(insar_pool);
      break;
    default:
      Log() << ALARM
            << "mapping type is neither matrix nor polynomial: " << parameters.format.Name();
      throw ERROR_UNHANDLED_CASE();
  }
}

void ReadAnnotation(const std::string& slave_pool, PARAMETER_POOL& insar_pool,
                    RESAMPLE_INPUT& input) {
  PARAMETER_POOL pool(slave_pool.c_str());
  WithMemoryFor("the centroid model of", slave_pool, [&] { input.doppler.Setup(pool); });
  input.doppler.range_start_time = ReadTime(insar_pool, "slave_first_rg_time");
  input.doppler.azimuth_start_time = ReadTime(insar_pool, "slave_first_az_time");
  Log().Message(PARAMETER, "fDC: t_rg_start = %f", input.doppler.range_start_time);
  Log().Message(PARAMETER, "fDC: t_az_start = %f", input.doppler.azimuth_start_time);
  pool.ReadEnumeration("imaging_mode", input.imaging_mode);
}
