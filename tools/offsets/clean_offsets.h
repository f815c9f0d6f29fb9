#pragma once

#include <cstdint>
#include <functional>

#include "offsets/offset_source.h"

/// Which offsets count.
struct CLEANING {
  double reject = 4.0;     ///< standard deviations from the neighbours at which one is an outlier
  double least_snr = 0.0;  ///< those below are gaps
  bool keep_outliers = false;
};

struct CLEANING_COUNTS {
  std::int64_t measured = 0;   ///< no gaps of the source
  std::int64_t weak = 0;       ///< of these: below the least SNR, or without one
  std::int64_t outliers = 0;   ///< of these: far from their neighbours
  std::int64_t predicted = 0;  ///< outliers and gaps that their neighbours replace
};

/// Calls `handle` for the offsets of a source by rows, without outliers.
///
/// An offset is judged by its neighbours, those within two rows and columns: a plane through them,
/// fitted with weights that fall off beyond the usual residual so that outliers among them do not
/// bend it, predicts its value, and the median of their absolute residuals from the plane is the
/// spread. It is an outlier where range or azimuth departs from the prediction by more than
/// `reject` times 1.4826 x the spread + 0.02 pixels. All are judged twice, the second time by those
/// neighbours that passed the first. Terrain, however far from a polynomial of the whole image, is
/// smooth from offset to offset, or raises the spread where it is not.
///
/// An outlier with at least eight neighbours, or a gap with at least twelve, is replaced by the
/// prediction, so that what is interpolated from the offsets around it stays where they are.
///
/// `progress` is called with the finished part, 0 to 1.
CLEANING_COUNTS ForEachCleanOffset(const OFFSET_SOURCE& source, const CLEANING& cleaning,
                                   const std::function<void(const OFFSET&)>& handle,
                                   const std::function<void(double)>& progress);
