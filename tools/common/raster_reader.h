#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "common/pixel_encoder.h"
#include "raster/mem_mgr.h"

/// Read access to a raster of any pixel type but rgb, line by line and in place: nothing but the
/// line in work is copied. The constructor throws the errors of MEM_MGR::Map, but
/// std::invalid_argument for a file of another format.
class RASTER_READER {
 public:
  explicit RASTER_READER(const std::string& path);

  const std::string& Path() const noexcept { return path_; }
  std::int64_t Width() const noexcept { return width_; }
  std::int64_t Height() const noexcept { return height_; }
  PIXEL_TYPE Type() const noexcept { return type_; }
  bool IsComplex() const noexcept { return HoldsPairs(type_); }

  /// Pixels first, first + 1, ... of a line, as many as `values` holds. Real pixels get the
  /// imaginary part 0. Throws std::out_of_range beyond the raster and std::invalid_argument for
  /// rgb pixels.
  void ReadLine(std::int64_t line, std::int64_t first,
                std::span<std::complex<double>> values) const;

  /// The same pixels of any type as they stand in the file.
  const std::byte* Pixels(std::int64_t line, std::int64_t first, std::size_t count) const;

 private:
  std::string path_;
  MEM_MGR raster_;
  std::int64_t width_ = 0;
  std::int64_t height_ = 0;
  PIXEL_TYPE type_{};
};
