#include "common/read_raster_header.h"

#include <fstream>
#include <stdexcept>

RASTER_HEADER ReadRasterHeader(const std::string& path) {
  RASTER_HEADER::BYTES bytes;
  std::ifstream file(path, std::ios::binary);
  if (!file.read(reinterpret_cast<char*>(bytes.data()), bytes.size())) {
    throw std::runtime_error("can not read a raster header from " + path);
  }
  return RASTER_HEADER(bytes);
}
