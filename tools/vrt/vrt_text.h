#pragma once

#include <string>

/// The description of a raster file that GDAL opens in its place: a virtual dataset beside it,
/// which names it without its folder. Throws std::invalid_argument for pixels that GDAL has no type
/// for, and the errors of MEM_MGR::Map.
std::string VrtText(const std::string& path);
