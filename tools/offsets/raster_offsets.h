#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "common/offset_record.h"
#include "offsets/offset_raster.h"
#include "offsets/offset_source.h"

/// Where the offsets come from and what their pixels mean.
struct RASTER_OFFSETS_OPTIONS {
  std::string range;
  std::string azimuth;
  std::string snr;                               ///< empty: all count the same
  std::array<int, 2> bands = {1, 1};             ///< of the range and of the azimuth raster
  std::optional<std::array<double, 2>> posting;  ///< samples and lines of the master a pixel
  std::optional<std::array<double, 2>> first;    ///< master sample and line of the first pixel
  std::optional<double> no_data;                 ///< in place of the one that the rasters declare
  bool negate = false;                           ///< offsets are master minus slave
};

/// Two rasters of offsets on one regular grid over the master, and perhaps one of their
/// signal-to-noise ratios. Pixels that are no finite number or the no-data value in either of the
/// two are gaps. For rasters PREFIX_range.ras of `match` its PREFIX.pool tells what the options do
/// not, and PREFIX_snr.ras is used.
class RASTER_OFFSETS final : public OFFSET_SOURCE {
 public:
  /// Throws std::invalid_argument for rasters that do not fit together and std::runtime_error for
  /// those that can not be opened.
  explicit RASTER_OFFSETS(RASTER_OFFSETS_OPTIONS options);

  int Columns() const override { return range_.Width(); }
  int Rows() const override { return range_.Height(); }
  RANGE_AZIMUTH<double> Posting() const override { return posting_; }
  RANGE_AZIMUTH<int> MasterSize() const override;
  double LeastSnr() const override;
  std::vector<OFFSET> Row(int row) const override;
  bool IsMadeOf(const std::string& path) const override;

 private:
  std::optional<OFFSET_RECORD> record_;
  RANGE_AZIMUTH<double> posting_;
  RANGE_AZIMUTH<double> first_;
  double sign_;
  OFFSET_RASTER range_;
  OFFSET_RASTER azimuth_;
  std::optional<OFFSET_RASTER> snr_;
};
