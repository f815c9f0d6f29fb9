#pragma once

#include "common/range_azimuth.h"
#include "common/raster_reader.h"

/// The shift between two images as a whole.
struct COARSE_SHIFT {
  RANGE_AZIMUTH<double> shift;  ///< slave minus master, good to about half a cell
  RANGE_AZIMUTH<int> cell;      ///< pixels that were averaged
  double snr = 0.0;             ///< peak of the correlation in standard deviations of the rest
};

/// Looks for the shift of largest correlation among all that leave any overlap. Each image is
/// divided into cells, at most 1024 along an axis; a cell has the logarithm of its mean power, less
/// the mean of the cells around it, so that speckle and texture count and the brightness of whole
/// regions does not. The images may differ in size.
///
/// Throws std::runtime_error where no shift stands out: no features, no overlap, or images that
/// have nothing in common.
COARSE_SHIFT FindCoarseShift(const RASTER_READER& master, const RASTER_READER& slave);
