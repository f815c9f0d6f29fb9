#include "support/raster_file.h"

std::string RasterHeader(int width, int height, std::size_t bytes_a_pixel, unsigned type) {
  const auto columns = static_cast<unsigned>(width);
  const auto lines = static_cast<unsigned>(height);
  const auto pixel = static_cast<unsigned>(bytes_a_pixel);
  std::string bytes;
  for (const unsigned word :
       {0x59A66A95U, columns, lines, 8 * pixel, columns * lines * pixel, type, 0U, 0U}) {
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
      bytes += static_cast<char>((word >> shift) & 0xFFU);
    }
  }
  return bytes;
}
