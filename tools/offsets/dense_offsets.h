#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "gdal/gdal_copy.h"
#include "gdal/gdal_source.h"

/// Where the offsets come from and what their pixels mean.
struct DENSE_OFFSETS_OPTIONS {
  std::string range;
  std::string azimuth;
  std::array<int, 2> bands = {1, 1};       ///< of the range and of the azimuth raster
  std::array<double, 2> posting = {1, 1};  ///< samples and lines of the master a pixel
  std::array<double, 2> first = {0, 0};    ///< master sample and line of the first pixel
  std::optional<double> no_data;           ///< in place of the one that the rasters declare
  bool negate = false;                     ///< offsets are master minus slave
};

/// What has to be added to a master position for the slave position.
struct DENSE_OFFSET {
  double x = 0.0;  ///< master sample
  double y = 0.0;  ///< master line
  double range = 0.0;
  double azimuth = 0.0;
};

/// Two GDAL rasters of offsets on one regular grid over the master. Pixels that are no finite
/// number or the no-data value in either of them are gaps.
class DENSE_OFFSETS {
 public:
  /// Throws std::invalid_argument for rasters that do not fit together and std::runtime_error for
  /// those that GDAL can not open.
  explicit DENSE_OFFSETS(const DENSE_OFFSETS_OPTIONS& options);

  /// Whether writing to this path would change the offsets.
  bool AreMadeOf(const std::string& path) const {
    return range_.IsMadeOf(path) || azimuth_.IsMadeOf(path);
  }

  int Columns() const { return range_.Whole().width; }
  int Lines() const { return range_.Whole().height; }

  /// Calls `handle` for the offsets, gaps left out, of every `stride`-th column and line.
  void ForEach(int stride, const std::function<void(const DENSE_OFFSET&)>& handle,
               const PROGRESS& progress) const;

 private:
  DENSE_OFFSETS_OPTIONS options_;
  GDAL_SOURCE range_;
  GDAL_SOURCE azimuth_;
  std::optional<double> range_no_data_;
  std::optional<double> azimuth_no_data_;
};
