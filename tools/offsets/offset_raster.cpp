#include "offsets/offset_raster.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <vector>

#include "base/same_file.h"
#include "common/read_raster_header.h"

namespace {

bool IsOwnRaster(const std::string& path) {
  return std::filesystem::is_regular_file(path) &&
         std::filesystem::file_size(path) >= RASTER_HEADER::size &&
         ReadRasterHeader(path).magic == RASTER_HEADER::raster_magic;
}

/// The no-data value of a band as its pixels hold it: texts such as -99999.99 are no float.
std::optional<double> AsPixel(const std::optional<double>& no_data, bool is_float) {
  constexpr double largest = std::numeric_limits<float>::max();
  return no_data && is_float && std::abs(*no_data) <= largest ? static_cast<float>(*no_data)
                                                              : no_data;
}

}  // namespace

OFFSET_RASTER::OFFSET_RASTER(const std::string& path, int band,
                             const std::optional<double>& no_data)
    : band_(band) {
  bool is_complex = false;
  if (IsOwnRaster(path)) {
    raster_.emplace(path);
    is_complex = raster_->IsComplex();
    no_data_ = AsPixel(no_data, raster_->Type() == PIXEL_TYPE::FLT_6);
    if (band != 1) {
      throw std::runtime_error(path + " has one band only");
    }
  } else {
    gdal_.emplace(path);
    is_complex = gdal_->IsComplex(band);
    no_data_ = AsPixel(no_data ? no_data : gdal_->NoData(band), gdal_->DataType(band) == "Float32");
  }
  if (is_complex) {
    throw std::invalid_argument(path + " is complex; offsets are real numbers");
  }
}

int OFFSET_RASTER::Width() const {
  return raster_ ? static_cast<int>(raster_->Width()) : gdal_->Whole().width;
}

int OFFSET_RASTER::Height() const {
  return raster_ ? static_cast<int>(raster_->Height()) : gdal_->Whole().height;
}

bool OFFSET_RASTER::IsMadeOf(const std::string& path) const {
  return raster_ ? IsSameFile(raster_->Path().c_str(), path.c_str()) : gdal_->IsMadeOf(path);
}

void OFFSET_RASTER::Read(int row, std::span<double> values) const {
  if (raster_) {
    std::vector<std::complex<double>> pixels(values.size());
    raster_->ReadLine(row, 0, pixels);
    std::transform(pixels.begin(), pixels.end(), values.begin(),
                   [](std::complex<double> pixel) { return pixel.real(); });
  } else {
    gdal_->Read(band_, {0, row, static_cast<int>(values.size()), 1}, values);
  }
  if (no_data_) {
    std::replace(values.begin(), values.end(), *no_data_, static_cast<double>(NAN));
  }
}
