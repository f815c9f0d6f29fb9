#pragma once

#include <optional>
#include <span>
#include <string>

#include "common/raster_reader.h"
#include "gdal/gdal_source.h"

/// A band of real numbers: a raster of this project, or any that GDAL opens.
class OFFSET_RASTER {
 public:
  /// `no_data` counts in place of the value that the band declares. Throws std::invalid_argument
  /// for complex pixels and std::runtime_error for files that can not be opened.
  OFFSET_RASTER(const std::string& path, int band, const std::optional<double>& no_data);

  int Width() const;
  int Height() const;
  bool IsMadeOf(const std::string& path) const;
  /// A row, with NaN in place of no data.
  void Read(int row, std::span<double> values) const;

 private:
  std::optional<RASTER_READER> raster_;
  std::optional<GDAL_SOURCE> gdal_;
  int band_;
  std::optional<double> no_data_;
};
