#include "common/raster_reader.h"

#include <cstring>
#include <stdexcept>

#include "base/error_exception.h"
#include "common/stored_number.h"

namespace {

template <class STORED>
double ReadNumber(const std::byte* from) noexcept {
  STORED stored;
  std::memcpy(&stored, from, sizeof stored);
  return static_cast<double>(stored);
}

template <class STORED>
void CopyNumbers(const std::byte* pixels, std::span<std::complex<double>> values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = ReadNumber<STORED>(pixels + i * sizeof(STORED));
  }
}

template <class STORED>
void CopyPairs(const std::byte* pixels, std::span<std::complex<double>> values) {
  auto* const numbers = reinterpret_cast<double*>(values.data());
  for (std::size_t i = 0; i < 2 * values.size(); ++i) {
    numbers[i] = ReadNumber<STORED>(pixels + i * sizeof(STORED));
  }
}

}  // namespace

RASTER_READER::RASTER_READER(const std::string& path) : path_(path) {
  constexpr int read_only = 0;
  try {
    raster_.Map(path.c_str(), read_only);
  } catch (const ERROR_NOT_SUPPORTED_PIXEL_TYPE&) {
    throw std::invalid_argument(path +
                                " is no raster of a known pixel type; slctool import makes "
                                "rasters of the files of other programs");
  }
  width_ = static_cast<std::int64_t>(raster_.Width());
  height_ = static_cast<std::int64_t>(raster_.Height());
  type_ = raster_.PixelType();
}

const std::byte* RASTER_READER::Pixels(std::int64_t line, std::int64_t first,
                                       std::size_t count) const {
  const auto n_pixels = static_cast<std::int64_t>(count);
  if (line < 0 || line >= height_ || first < 0 || n_pixels > width_ - first) {
    throw std::out_of_range("pixels outside the raster " + path_);
  }
  return reinterpret_cast<const std::byte*>(raster_.Data()) +
         (line * width_ + first) * static_cast<std::int64_t>(raster_.BytesPerPixel());
}

void RASTER_READER::ReadLine(std::int64_t line, std::int64_t first,
                             std::span<std::complex<double>> values) const {
  const std::byte* pixels = Pixels(line, first, values.size());
  if (type_ == PIXEL_TYPE::RGB) {
    throw std::invalid_argument("pixels are no numbers in " + path_);
  }
  VisitStoredNumber(type_, [&]<class STORED>(STORED) {
    IsComplex() ? CopyPairs<STORED>(pixels, values) : CopyNumbers<STORED>(pixels, values);
  });
}
