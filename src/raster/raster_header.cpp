#include "raster/raster_header.h"

namespace {

std::uint32_t DecodeWord(const RASTER_HEADER::BYTES& bytes, std::size_t word) {
  std::uint32_t value = 0;
  for (std::size_t byte = 4 * word; byte < 4 * word + 4; ++byte) {
    value = value << 8 | bytes[byte];
  }
  return value;
}

}  // namespace

RASTER_HEADER::RASTER_HEADER(std::uint32_t columns, std::uint32_t rows, PIXEL_TYPE pixel_type)
    : width(columns), height(rows), type(TypeWord(pixel_type)) {
  const auto bytes_per_pixel = static_cast<std::uint32_t>(BytesPerPixel(pixel_type));
  depth = 8 * bytes_per_pixel;
  length = width * height * bytes_per_pixel;
}

RASTER_HEADER::RASTER_HEADER(const BYTES& bytes)
    : magic(DecodeWord(bytes, 0)),
      width(DecodeWord(bytes, 1)),
      height(DecodeWord(bytes, 2)),
      depth(DecodeWord(bytes, 3)),
      length(DecodeWord(bytes, 4)),
      type(DecodeWord(bytes, 5)),
      map_type(DecodeWord(bytes, 6)),
      map_length(DecodeWord(bytes, 7)) {}

RASTER_HEADER::BYTES RASTER_HEADER::Encode() const {
  BYTES bytes{};
  std::size_t position = 0;
  for (const std::uint32_t word :
       {magic, width, height, depth, length, type, map_type, map_length}) {
    for (int shift = 24; shift >= 0; shift -= 8) {
      bytes[position++] = static_cast<unsigned char>(word >> shift);
    }
  }
  return bytes;
}
