#pragma once

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "support/grid.h"
#include "support/temporary_directory.h"

/// Type words of raster headers.
enum RASTER_TYPE : unsigned {
  RASTER_BYTE = 1,
  RASTER_COMPLEX_BINARY_16 = 92,
  RASTER_COMPLEX_FLOAT = 96,
  RASTER_COMPLEX_INT_16 = 97,
  RASTER_FLOAT = 99
};

inline constexpr std::size_t raster_header_size = 32;

/// The eight big-endian words in front of the pixels of a raster without colour map.
std::string RasterHeader(int width, int height, std::size_t bytes_a_pixel, unsigned type);

template <class T>
void WriteRaster(const std::string& path, const GRID<T>& grid, unsigned type) {
  const std::string pixels(reinterpret_cast<const char*>(grid.values.data()),
                           grid.values.size() * sizeof(T));
  WriteFile(path, RasterHeader(grid.width, grid.height, sizeof(T), type) + pixels);
}

/// Throws std::runtime_error unless the header and the size of the file are what a raster of so
/// many `T` pixels of this type has.
template <class T>
GRID<T> ReadRaster(const std::string& path, int width, int height, unsigned type) {
  const std::string bytes = ReadFile(path);
  GRID<T> grid(width, height);
  const std::size_t size = grid.values.size() * sizeof(T);
  if (!bytes.starts_with(RasterHeader(width, height, sizeof(T), type)) ||
      bytes.size() != raster_header_size + size) {
    throw std::runtime_error("wrong header or size: " + path);
  }
  std::memcpy(grid.values.data(), bytes.data() + raster_header_size, size);
  return grid;
}
