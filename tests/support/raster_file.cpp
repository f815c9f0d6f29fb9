#include "support/raster_file.h"

#include <stdexcept>

std::string HeaderBytes(const RASTER_HEADER& header) {
  std::string bytes;
  for (const unsigned word : {header.magic, header.width, header.height, header.depth,
                              header.length, header.type, header.map_type, header.map_length}) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
      bytes += static_cast<char>((word >> shift) & 0xFFU);
    }
  }
  return bytes;
}

RASTER_HEADER ParseHeader(std::string_view bytes) {
  if (bytes.size() < raster_header_size) {
    throw std::runtime_error("shorter than a raster header");
  }
  const auto word = [&](std::size_t index) {
    unsigned value = 0;
    for (const char byte : bytes.substr(4 * index, 4)) {
      value = value << 8 | static_cast<unsigned char>(byte);
    }
    return value;
  };
  return {word(0), word(1), word(2), word(3), word(4), word(5), word(6), word(7)};
}
