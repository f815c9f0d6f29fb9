#include "common/raster_writer.h"

#include <fcntl.h>

#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <system_error>
#include <type_traits>
#include <vector>

#include "base/parallel_lines.h"
#include "common/new_files.h"
#include "common/pixel_encoder.h"
#include "system/file_descriptor.h"

namespace {

/// Makes the file; a pixel is made of one VALUE.
template <class VALUE, class FILL>
void WritePixels(const std::string& path, std::int64_t width, std::int64_t height, PIXEL_TYPE type,
                 const FILL& fill) {
  constexpr std::size_t numbers_a_value = std::is_same_v<VALUE, double> ? 1 : 2;
  NEW_FILE file(path);
  RASTER_WRITER raster(file.Path(), width, height, type);
  ForEachLine(height, [&](std::int64_t line) {
    std::vector<VALUE> values(static_cast<std::size_t>(width));
    fill(line, values);
    raster.Write(line,
                 {reinterpret_cast<const double*>(values.data()), values.size() * numbers_a_value});
  });
  file.Finish();
}

[[noreturn]] void RefuseType(const std::string& path) {
  throw std::invalid_argument("can not write pixels of this type into " + path);
}

}  // namespace

void CreateRaster(MEM_MGR& raster, const std::string& path, std::int64_t width, std::int64_t height,
                  PIXEL_TYPE type) {
  raster.Create(path.c_str(), 0, 0, width - 1, height - 1, type);
  const FILE_DESCRIPTOR file(path.c_str(), O_RDWR);
  const std::int64_t length = file.Length().value_or(0);
  // Not every file system can do this.
  if (length > 0 && ::fallocate(file.Get(), 0, 0, length) != 0 && errno != EOPNOTSUPP) {
    throw std::system_error(errno, std::generic_category(), "no room for " + path);
  }
}

RASTER_WRITER::RASTER_WRITER(const std::string& path, std::int64_t width, std::int64_t height,
                             PIXEL_TYPE type) {
  CreateRaster(raster_, path, width, height, type);
}

void RASTER_WRITER::Write(std::int64_t line, std::span<const double> numbers) {
  auto* const pixels = reinterpret_cast<std::byte*>(raster_.Data());
  ENCODING_COUNTS counts;
  EncodePixels(raster_.PixelType(), numbers,
               pixels + line * raster_.Width() * raster_.BytesPerPixel(), counts);
}

void WriteRaster(const std::string& path, std::int64_t width, std::int64_t height, PIXEL_TYPE type,
                 const COMPLEX_LINE& fill) {
  if (!HoldsPairs(type)) {
    RefuseType(path);
  }
  WritePixels<std::complex<double>>(path, width, height, type, fill);
}

void WriteRealRaster(const std::string& path, std::int64_t width, std::int64_t height,
                     PIXEL_TYPE type, const REAL_LINE& fill) {
  if (HoldsPairs(type) || type == PIXEL_TYPE::RGB || type == PIXEL_TYPE::OTHERS) {
    RefuseType(path);
  }
  WritePixels<double>(path, width, height, type, fill);
}
