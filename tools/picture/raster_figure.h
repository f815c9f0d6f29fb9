#pragma once

#include "common/raster_reader.h"
#include "picture/figure.h"
#include "picture/picture_size.h"

/// The figures average the pixels down to the wanted size in one pass over the lines. Pixels
/// that are 0, which marks missing data, or not finite are left out. Throw std::invalid_argument
/// for rasters without pixels, of different sizes, or with a pixel type that does not fit.

/// RMS amplitude in decibels of one unit; the scale runs from the 1st to the 99th percentile.
FIGURE AmplitudeFigure(const RASTER_READER& image, const PICTURE_SIZE& wanted);
/// Phase of the averaged complex values, in radians.
FIGURE PhaseFigure(const RASTER_READER& image, const PICTURE_SIZE& wanted);
/// Phase of a * conj(b) averaged within boxes of at least the wanted looks, or 3 x 3 pixels, in
/// radians.
FIGURE InterferogramFigure(const RASTER_READER& a, const RASTER_READER& b,
                           const PICTURE_SIZE& wanted);
/// Coherence within boxes of at least the wanted looks, or 5 x 5 pixels, as far as the image has
/// them.
FIGURE CoherenceFigure(const RASTER_READER& a, const RASTER_READER& b, const PICTURE_SIZE& wanted);
/// Mean of real pixels; the scale runs from the 1st to the 99th percentile.
FIGURE ValueFigure(const RASTER_READER& image, const PICTURE_SIZE& wanted);
/// Where a mask of one byte a pixel is not 0. A box is shown as valid when all of its pixels
/// are, so that single gaps can be seen.
FIGURE MaskFigure(const RASTER_READER& mask, const PICTURE_SIZE& wanted);
