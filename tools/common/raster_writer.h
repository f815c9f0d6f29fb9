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

/// A new raster file whose lines are written in place, by any number of threads at once.
class RASTER_WRITER {
 public:
  /// Makes the file under this very name. Throws what `CreateRaster` throws.
  RASTER_WRITER(const std::string& path, std::int64_t width, std::int64_t height, PIXEL_TYPE type);

  /// The numbers of a line, one a pixel or two a pair, encoded as `EncodePixels` does.
  void Write(std::int64_t line, std::span<const double> numbers);

 private:
  MEM_MGR raster_;
};

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
