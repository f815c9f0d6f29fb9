#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

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

/// The eight big-endian words of a raster header.
struct RASTER_HEADER {
  unsigned magic = 0x59A66A95;
  unsigned width = 0;
  unsigned height = 0;
  unsigned depth = 0;   ///< bits a pixel
  unsigned length = 0;  ///< bytes of the pixel block
  unsigned type = 0;
  unsigned map_type = 0;
  unsigned map_length = 0;  ///< bytes of the colour map that follows the header

  bool operator==(const RASTER_HEADER&) const = default;
};

inline constexpr std::size_t raster_header_size = 32;

std::string HeaderBytes(const RASTER_HEADER& header);
/// Throws std::runtime_error for less than a header.
RASTER_HEADER ParseHeader(std::string_view bytes);

/// The header of a raster of `T` pixels.
template <class T>
RASTER_HEADER HeaderOf(const GRID<T>& grid, unsigned type) {
  RASTER_HEADER header;
  header.width = static_cast<unsigned>(grid.width);
  header.height = static_cast<unsigned>(grid.height);
  header.depth = 8 * sizeof(T);
  header.length = static_cast<unsigned>(grid.values.size() * sizeof(T));
  header.type = type;
  return header;
}

template <class T>
void WriteRaster(const std::string& path, const GRID<T>& grid, unsigned type) {
  const std::string pixels(reinterpret_cast<const char*>(grid.values.data()),
                           grid.values.size() * sizeof(T));
  WriteFile(path, HeaderBytes(HeaderOf(grid, type)) + pixels);
}

/// Throws std::runtime_error unless every word of the header and the size of the file are what
/// a raster of `T` pixels of this type without colour map has.
template <class T>
GRID<T> ReadRaster(const std::string& path, unsigned type) {
  const std::string bytes = ReadFile(path);
  const RASTER_HEADER header = ParseHeader(bytes);
  GRID<T> grid(static_cast<int>(header.width), static_cast<int>(header.height));
  if (header != HeaderOf(grid, type) || bytes.size() != raster_header_size + header.length) {
    throw std::runtime_error("wrong header or size: " + path);
  }
  std::memcpy(grid.values.data(), bytes.data() + raster_header_size, header.length);
  return grid;
}
