#pragma once

#include <ostream>
#include <string>

/// Writes what a raster file holds as lines "key: value": the words of its header, its pixel
/// type and size, how many pixels are finite and how many are zero, and the statistics of the
/// finite ones, if there are any; for complex pixels of real part, imaginary part and amplitude,
/// for rgb pixels none. The header comes out before anything is found wrong with the rest of the
/// file.
///
/// Throws std::runtime_error when there is no header, and the errors of MEM_MGR::Map.
void WriteRasterReport(const std::string& path, std::ostream& report);
