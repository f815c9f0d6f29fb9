#pragma once

#include <optional>
#include <string>
#include <vector>

#include "common/pixel_encoder.h"
#include "gdal/gdal_copy.h"
#include "gdal/gdal_source.h"

/// What to make a raster of.
struct IMPORT_OPTIONS {
  std::string source;
  std::string target;
  std::optional<PIXEL_TYPE> type;  ///< without: the one that holds all numbers of the source
  double scale = 1.0;              ///< every number is multiplied by it
  std::vector<int> bands = {1};    ///< one band, or two real ones with real and imaginary part
  std::optional<GDAL_WINDOW> window;
};

struct IMPORT_RESULT {
  PIXEL_TYPE type{};
  GDAL_WINDOW window;
  ENCODING_COUNTS counts;
};

/// Reads a part of a GDAL raster block by block and writes it into a new raster file. Real bands
/// make pairs with the imaginary part 0, or that of the second band.
///
/// Throws std::invalid_argument for options that do not fit the source, before anything is created,
/// std::runtime_error for what GDAL can not read, and the errors of MEM_MGR::Create. What was made
/// of a source that can not be read to its end is removed.
IMPORT_RESULT ImportRaster(const IMPORT_OPTIONS& options, const PROGRESS& progress);
