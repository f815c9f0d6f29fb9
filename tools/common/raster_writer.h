#pragma once

#include <complex>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "raster/mem_mgr.h"
#include "raster/pixel_type.h"

/// Creates a raster file and takes the disk space for all of its pixels, which would otherwise end
/// the program by a signal where a full disk is found while they are written. Throws
/// std::system_error for that, and the errors of MEM_MGR::Create.
void CreateRaster(MEM_MGR& raster, const std::string& path, std::int64_t width, std::int64_t height,
                  PIXEL_TYPE type);

/// Fills the values of a line. Called for several lines at once; must not throw.
using COMPLEX_LINE = std::function<void(std::int64_t line, std::span<std::complex<double>> values)>;
using REAL_LINE = std::function<void(std::int64_t line, std::span<double> values)>;

/// Creates a raster file and fills it line by line, in place: no image is ever held in memory. It
/// gets its name when it is whole. Numbers are encoded as `EncodePixels` does.
///
/// Throw std::invalid_argument for a type that does not hold pairs or single numbers,
/// std::system_error where no file of this name can be made, and the errors of MEM_MGR::Create.
void WriteRaster(const std::string& path, std::int64_t width, std::int64_t height, PIXEL_TYPE type,
                 const COMPLEX_LINE& fill);
void WriteRealRaster(const std::string& path, std::int64_t width, std::int64_t height,
                     PIXEL_TYPE type, const REAL_LINE& fill);
