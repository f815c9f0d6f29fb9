#include "gdal/gdal_source.h"

#include <gdal_priv.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

#include "base/same_file.h"
#include "gdal/gdal_errors.h"

namespace {

/// The names of the rasters in a container, one a line.
std::string SubdatasetNames(GDALDataset& dataset) {
  std::string names;
  const CPLStringList entries(static_cast<CSLConstList>(dataset.GetMetadata("SUBDATASETS")));
  for (int i = 0; i < entries.size(); ++i) {
    const std::string_view entry = entries[i];
    const std::size_t separator = entry.find('=');
    if (entry.substr(0, separator).ends_with("_NAME")) {
      names.append("\n  ").append(entry.substr(separator + 1));
    }
  }
  return names;
}

template <class VALUE>
void ReadPixels(GDALRasterBand& band, const std::string& path, const GDAL_WINDOW& window,
                GDALDataType type, std::span<VALUE> values) {
  const GDAL_ERRORS errors;
  if (band.RasterIO(GF_Read, window.x, window.y, window.width, window.height, values.data(),
                    window.width, window.height, type, 0, 0, nullptr) != CE_None) {
    errors.Throw("can not read " + path);
  }
}

/// The second of two bands that are parts of complex numbers may be declared as alpha.
bool HasMaskOfItsOwn(GDALRasterBand& band) {
  return (band.GetMaskFlags() & (GMF_PER_DATASET | GMF_ALPHA)) == GMF_PER_DATASET;
}

template <class VALUE>
void ReadWindow(GDALRasterBand& band, const std::string& path, const GDAL_WINDOW& window,
                GDALDataType type, std::span<VALUE> values) {
  ReadPixels(band, path, window, type, values);
  if (!HasMaskOfItsOwn(band)) {
    return;
  }
  std::vector<unsigned char> mask(static_cast<std::size_t>(window.width) *
                                  static_cast<std::size_t>(window.height));
  ReadPixels(*band.GetMaskBand(), path, window, GDT_Byte, std::span(mask));
  for (std::size_t i = 0; i < mask.size(); ++i) {
    if (mask[i] == 0) {
      values[i] = std::numeric_limits<double>::quiet_NaN();
    }
  }
}

}  // namespace

void GDAL_SOURCE::CLOSE::operator()(GDALDataset* dataset) const noexcept {
  GDALClose(dataset);
}

GDAL_SOURCE::GDAL_SOURCE(const std::string& path) : path_(path) {
  GDALAllRegister();
  const GDAL_ERRORS errors;
  dataset_.reset(
      GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR));
  if (!dataset_) {
    errors.Throw("can not open " + path);
  }
  if (dataset_->GetRasterCount() == 0) {
    errors.Throw(path +
                 " holds several rasters or none; name one of these:" + SubdatasetNames(*dataset_));
  }
}

GDAL_WINDOW GDAL_SOURCE::Whole() const {
  return {0, 0, dataset_->GetRasterXSize(), dataset_->GetRasterYSize()};
}

bool GDAL_SOURCE::IsMadeOf(const std::string& path) const {
  const CPLStringList files(dataset_->GetFileList());
  for (int i = 0; i < files.size(); ++i) {
    if (IsSameFile(files[i], path.c_str())) {
      return true;
    }
  }
  return false;
}

int GDAL_SOURCE::BandCount() const {
  return dataset_->GetRasterCount();
}

bool GDAL_SOURCE::IsComplex(int band) const {
  return GDALDataTypeIsComplex(Band(band).GetRasterDataType()) != 0;
}

std::string GDAL_SOURCE::DataType(int band) const {
  return GDALGetDataTypeName(Band(band).GetRasterDataType());
}

std::optional<double> GDAL_SOURCE::NoData(int band) const {
  int has_value = 0;
  const double value = Band(band).GetNoDataValue(&has_value);
  return has_value != 0 ? std::optional(value) : std::nullopt;
}

void GDAL_SOURCE::Read(int band, const GDAL_WINDOW& window, std::span<double> values) const {
  ReadWindow(Band(band), path_, window, GDT_Float64, values);
}

void GDAL_SOURCE::Read(int band, const GDAL_WINDOW& window,
                       std::span<std::complex<double>> values) const {
  ReadWindow(Band(band), path_, window, GDT_CFloat64, values);
}

int GDAL_SOURCE::LinesAtOnce(int band, const GDAL_WINDOW& window) const {
  constexpr int usual_pixels = 1 << 18;
  constexpr int most_pixels = 1 << 22;
  int block_width = 0;
  int block_height = 0;
  Band(band).GetBlockSize(&block_width, &block_height);
  const int lines = std::max(usual_pixels / window.width, block_height);
  return std::clamp(lines, 1, std::max(most_pixels / window.width, 1));
}

GDALRasterBand& GDAL_SOURCE::Band(int band) const {
  if (band < 1 || band > dataset_->GetRasterCount()) {
    throw std::runtime_error(path_ + " has no band " + std::to_string(band) + ", it has " +
                             std::to_string(BandCount()));
  }
  return *dataset_->GetRasterBand(band);
}
