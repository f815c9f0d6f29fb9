#pragma once

#include <string>
#include <vector>

#include "common/progress_bar.h"
#include "common/raster_reader.h"

/// Writes a raster of any type as a file of any GDAL driver, without ever holding more than a few
/// lines of it. Binary16 becomes Float32 or CFloat32 and pairs of bytes CInt16, both of which hold
/// the same numbers; every other type keeps its own.
///
/// `driver` is a GDAL name, or empty for the first driver with the extension of `path`. `options`
/// are creation options NAME=VALUE. Throws std::runtime_error with what GDAL says about it, also
/// where a driver could not store the pixels as they are, and always where the program was built
/// without GDAL.
void WriteGdalCopy(const RASTER_READER& raster, const std::string& path, const std::string& driver,
                   const std::vector<std::string>& options, const PROGRESS& progress);
