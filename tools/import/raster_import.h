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
  std::string mask;                   ///< of pixels with data, made if not empty
  std::optional<PIXEL_TYPE> type;     ///< without: one that suits the numbers of the source
  std::optional<double> scale = 1.0;  ///< of every number; without: chosen by a sample of them
  std::vector<int> bands;  ///< one band, or two real ones with real and imaginary part; none: the
                           ///< only one, or the first of more than two
  std::optional<GDAL_WINDOW> window;
  bool transpose = false;     ///< lines of the source become columns of the raster
  bool flip_samples = false;  ///< then the first sample becomes the last one
  bool flip_lines = false;
};

struct IMPORT_RESULT {
  PIXEL_TYPE type{};
  GDAL_WINDOW window;
  std::int64_t width = 0;  ///< of the raster
  std::int64_t height = 0;
  double scale = 1.0;
  ENCODING_COUNTS counts;
  std::int64_t no_data = 0;     ///< pixels of the source's no-data value, stored as 0
  std::int64_t not_finite = 0;  ///< other pixels that are no finite number, stored as 0
};

/// Reads a part of a GDAL raster block by block and writes it into a new raster file. Real bands
/// make pairs with the imaginary part 0, or that of the second band. Pixels without data and those
/// that are no finite number become 0, also in the mask, which is 1 elsewhere.
///
/// Throws std::invalid_argument for options that do not fit the source, before anything is created,
/// std::runtime_error for what GDAL can not read, std::system_error and the errors of
/// MEM_MGR::Create for what can not be made. Nothing is made of a source that can not be read to
/// its end.
IMPORT_RESULT ImportRaster(const IMPORT_OPTIONS& options, const PROGRESS& progress);
