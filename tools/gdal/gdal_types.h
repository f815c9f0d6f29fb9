#pragma once

#include <string>

#include "raster/pixel_type.h"

/// How GDAL sees the pixels of a raster where they lie: as so many bands of one data type, the
/// numbers of a pixel side by side.
struct GDAL_LAYOUT {
  const char* data_type;  ///< by its GDAL name
  int n_bands;            ///< one a colour; one for each part of a pair without a data type
};

/// Throws std::invalid_argument, which says why, for binary16.
GDAL_LAYOUT GdalLayoutOf(PIXEL_TYPE type);

/// The smallest pixel type that holds every number of a GDAL data type; c_flt_15 or flt_15 where
/// none does.
PIXEL_TYPE PixelTypeForGdal(const std::string& data_type);
