#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "raster/pixel_type.h"

/// The 32 bytes that begin a raster file: eight 32-bit words, big-endian on disk. The colour map
/// follows, then the pixel block in the byte order of the machine, rows and pixels without padding.
struct RASTER_HEADER {
  static constexpr std::size_t size = 32;
  static constexpr std::uint32_t raster_magic = 0x59A66A95;
  using BYTES = std::array<unsigned char, size>;

  std::uint32_t magic = raster_magic;  ///< not looked at when a file is read
  std::uint32_t width = 0;             ///< columns
  std::uint32_t height = 0;            ///< rows
  std::uint32_t depth = 0;             ///< bits per pixel
  std::uint32_t length = 0;            ///< low 32 bits of the pixel block's length in bytes
  std::uint32_t type = 0;              ///< with `depth` the pixel type
  std::uint32_t map_type = 0;          ///< 1 with a colour map, else 0
  std::uint32_t map_length = 0;        ///< bytes of the colour map: its entries x 3

  /// Header of an image without colour map.
  RASTER_HEADER(std::uint32_t columns, std::uint32_t rows, PIXEL_TYPE pixel_type);
  /// Reads the words as they stand on disk.
  explicit RASTER_HEADER(const BYTES& bytes);

  /// The words as they stand on disk.
  BYTES Encode() const;

  PIXEL_TYPE PixelType() const noexcept { return PixelTypeFromWords(type, depth); }
  /// Distance of the pixel block from the start of the file in bytes.
  std::int64_t PixelOffset() const noexcept { return std::int64_t{size} + map_length; }
};
