#pragma once

#include <string>

#include "common/range_azimuth.h"

/// Where the pixels of rasters of measured shifts lie in the master, and how large that is: what
/// `match` records in PREFIX.pool beside its rasters PREFIX_range.ras, PREFIX_azimuth.ras and
/// PREFIX_snr.ras, and `offsets` reads there.
struct OFFSET_RECORD {
  RANGE_AZIMUTH<int> posting;      ///< master samples and lines from pixel to pixel
  RANGE_AZIMUTH<double> first;     ///< master sample and line of the first pixel
  RANGE_AZIMUTH<int> master_size;  ///< samples and lines

  /// Makes the pool. Throws std::system_error and the errors of a pool.
  void Write(const std::string& pool) const;
  /// Throws the errors of a pool.
  static OFFSET_RECORD Read(const std::string& pool);
};
