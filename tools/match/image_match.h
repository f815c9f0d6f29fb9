#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "match/coarse_match.h"
#include "match/window_match.h"

/// A regular grid of windows over the master.
struct MATCH_GRID {
  RANGE_AZIMUTH<std::int64_t> first;  ///< first sample and line of the first window
  RANGE_AZIMUTH<int> posting;         ///< from window to window
  RANGE_AZIMUTH<int> count;

  /// All windows that lie within the master, the first at `first`. Throws std::invalid_argument
  /// when there is none.
  static MATCH_GRID Over(const RASTER_READER& master, const WINDOW_SHAPE& shape,
                         const RANGE_AZIMUTH<std::int64_t>& first,
                         const RANGE_AZIMUTH<int>& posting);
};

/// One value a window, row by row. Windows without a match have NaN shifts and the SNR 0.
struct MATCHES {
  MATCH_GRID grid;
  COARSE_SHIFT coarse;
  std::vector<MATCHED_SHIFT> shifts;
};

/// Matches all windows of a grid on all processors. The whole images are matched first; then some
/// large windows, spread over the master, tell how the shift changes over it, as a surface of
/// second order where enough of them are sure, so that the windows of the grid look around what is
/// to be expected at their place. `progress` is called with the finished part, 0 to 1, by one
/// thread at a time.
///
/// Throws std::runtime_error when nothing matches.
MATCHES MatchImages(const RASTER_READER& master, const RASTER_READER& slave,
                    const WINDOW_SHAPE& shape, const MATCH_GRID& grid,
                    const std::function<void(double)>& progress);
