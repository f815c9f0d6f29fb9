#include "mapping/mapping_matrix.h"

#include <cstring>

#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr int read_only = 0;

void CheckSubsampling(int rg_subsampling, int az_subsampling) {
  if (rg_subsampling < 1 || az_subsampling < 1) {
    Log() << ALARM << "subsampling of the mapping files must be at least 1, not " << rg_subsampling
          << " in range and " << az_subsampling << " in azimuth";
    throw ERROR_ARGUMENT();
  }
}

void MapShifts(MEM_MGR& raster, const char* file) {
  raster.Map(file, read_only);
  if (raster.PixelType() != PIXEL_TYPE::FLT_6) {
    Log() << ALARM << "pixels of the mapping file are not 32-bit real: " << file;
    throw ERROR_NOT_SUPPORTED_PIXEL_TYPE();
  }
}

void CopyShifts(MEM_MGR& raster, const float* shifts, unsigned columns, unsigned lines) {
  raster.CreateInMemory(0, 0, std::int64_t{columns} - 1, std::int64_t{lines} - 1,
                        PIXEL_TYPE::FLT_6);
  std::memcpy(raster.Data(), shifts, static_cast<std::size_t>(raster.DataLength()));
}

void InitOnRaster(MATRIX_INTERPOLATION<float>& interpolation, const MEM_MGR& raster) {
  interpolation.Init(raster.Rows<float>(), static_cast<unsigned>(raster.Width()),
                     static_cast<unsigned>(raster.Height()));
}

}  // namespace

MAPPING_MATRIX::MAPPING_MATRIX(const char* rg_file, const char* az_file, int rg_subsampling,
                               int az_subsampling) {
  Open(rg_file, az_file, rg_subsampling, az_subsampling);
}

void MAPPING_MATRIX::Open(const char* rg_file, const char* az_file, int rg_subsampling,
                          int az_subsampling) {
  Restart(rg_subsampling, az_subsampling);
  Log().Message(TRACE, "- open range mapping file: %s", rg_file);
  MapShifts(rg_raster_, rg_file);
  Log().Message(TRACE, "- open azimuth mapping file: %s", az_file);
  MapShifts(az_raster_, az_file);
  CheckEqualSizes();
  InitInterpolation();
}

void MAPPING_MATRIX::Copy(const float* rg_shifts, const float* az_shifts, unsigned columns,
                          unsigned lines, int rg_subsampling, int az_subsampling) {
  Restart(rg_subsampling, az_subsampling);
  CopyShifts(rg_raster_, rg_shifts, columns, lines);
  CopyShifts(az_raster_, az_shifts, columns, lines);
  InitInterpolation();
}

void MAPPING_MATRIX::Restart(int rg_subsampling, int az_subsampling) {
  rg_interpolation_ = {};
  az_interpolation_ = {};
  CheckSubsampling(rg_subsampling, az_subsampling);
  rg_subsampling_ = rg_subsampling;
  az_subsampling_ = az_subsampling;
}

void MAPPING_MATRIX::CheckEqualSizes() const {
  if (rg_raster_.Width() != az_raster_.Width()) {
    Log() << ALARM << "mapping files have diffent width: " << rg_raster_.Width()
          << " != " << az_raster_.Width() << " ";
    throw ERROR_DATA();
  }
  if (rg_raster_.Height() != az_raster_.Height()) {
    Log() << ALARM << "mapping files have diffent height: " << rg_raster_.Height()
          << " != " << az_raster_.Height() << " ";
    throw ERROR_DATA();
  }
}

void MAPPING_MATRIX::InitInterpolation() {
  InitOnRaster(rg_interpolation_, rg_raster_);
  InitOnRaster(az_interpolation_, az_raster_);
}

// Outside the grid the interpolated shift is 0.

double MAPPING_MATRIX::GetSlaveRange(double range, double azimuth) const {
  return range + rg_interpolation_.GetValue(azimuth / az_subsampling_, range / rg_subsampling_);
}

double MAPPING_MATRIX::GetSlaveAzimuth(double range, double azimuth) const {
  return azimuth + az_interpolation_.GetValue(azimuth / az_subsampling_, range / rg_subsampling_);
}

unsigned MAPPING_MATRIX::GetMaxRange() const {
  return static_cast<unsigned>(rg_subsampling_) * rg_interpolation_.RgSize() - 1;
}

unsigned MAPPING_MATRIX::GetMaxAzimuth() const {
  return static_cast<unsigned>(az_subsampling_) * rg_interpolation_.AzSize() - 1;
}
