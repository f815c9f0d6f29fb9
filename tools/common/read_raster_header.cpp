#include "common/read_raster_header.h"

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <system_error>

RASTER_HEADER ReadRasterHeader(const std::string& path) {
  RASTER_HEADER::BYTES bytes;
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::system_error(errno, std::generic_category(), "can not open " + path);
  }
  if (!file.read(reinterpret_cast<char*>(bytes.data()), bytes.size())) {
    throw std::runtime_error("can not read a raster header from " + path);
  }
  return RASTER_HEADER(bytes);
}
