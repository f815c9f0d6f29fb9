#pragma once

#include <string>
#include <vector>

#include "common/progress_bar.h"
#include "common/raster_reader.h"

struct GDAL_COPY_OPTIONS {
  std::string driver;  ///< GDAL's name; empty: the first driver with the extension of the path
  std::vector<std::string> creation_options;  ///< NAME=VALUE
  std::string
      type;  ///< GDAL's name of the data type; empty: one that holds the numbers as they are
  double scale = 1.0;  ///< of every number
  std::string mask;    ///< raster whose zeros tell pixels without data; may be empty
};

/// Throws std::runtime_error unless a GDAL driver with the extension of the path writes pixels of
/// the data type of this GDAL name, and always where the program was built without GDAL.
void CheckGdalFormat(const std::string& path, const char* type);

/// Writes a raster of any type as a file of any GDAL driver, without ever holding more than a few
/// lines of it. Without a type in the options, binary16 becomes Float32 or CFloat32 and pairs of
/// bytes CInt16, both of which hold the same numbers; every other type keeps its own. Integers are
/// rounded and clipped. Pixels without data become NaN, or 0 in integer types, and the file
/// declares it.
///
/// Throws std::invalid_argument for options that do not fit the raster, std::runtime_error with
/// what GDAL says, also where a driver could not store the pixels as they are, and always where the
/// program was built without GDAL.
void WriteGdalCopy(const RASTER_READER& raster, const std::string& path,
                   const GDAL_COPY_OPTIONS& options, const PROGRESS& progress);
