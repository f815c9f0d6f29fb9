#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "common/range_azimuth.h"

/// What has to be added to a master position for the slave position, as it was measured.
struct OFFSET {
  double x = 0.0;  ///< master sample
  double y = 0.0;  ///< master line
  double range = NAN;
  double azimuth = NAN;
  double snr = 1.0;
  int column = 0;           ///< of the source's grid
  bool is_suspect = false;  ///< not to be believed about others

  bool IsGap() const noexcept { return !std::isfinite(range) || !std::isfinite(azimuth); }
};

/// Measured offsets on a grid of rows and columns.
class OFFSET_SOURCE {
 public:
  OFFSET_SOURCE() = default;
  OFFSET_SOURCE(const OFFSET_SOURCE&) = delete;
  OFFSET_SOURCE& operator=(const OFFSET_SOURCE&) = delete;
  virtual ~OFFSET_SOURCE() = default;

  virtual int Columns() const = 0;
  virtual int Rows() const = 0;
  /// Master samples and lines from column to column and row to row.
  virtual RANGE_AZIMUTH<double> Posting() const = 0;
  /// Samples and lines of the master; 0 where the source does not tell.
  virtual RANGE_AZIMUTH<int> MasterSize() const = 0;
  /// The SNR below which offsets of this source mean nothing.
  virtual double LeastSnr() const = 0;

  /// The offsets of a row by their columns, gaps among them.
  virtual std::vector<OFFSET> Row(int row) const = 0;
  /// Whether writing to this path would change the offsets.
  virtual bool IsMadeOf(const std::string& path) const = 0;
};
