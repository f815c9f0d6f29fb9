#pragma once

#include <string>

#include "raster/raster_header.h"

/// The header of a raster file. Throws std::runtime_error when there is none.
RASTER_HEADER ReadRasterHeader(const std::string& path);
