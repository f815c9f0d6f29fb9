#include "common/raster_writer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

#include "common/binary16.h"
#include "common/parallel_lines.h"
#include "raster/mem_mgr.h"

namespace {

template <class INTEGER>
INTEGER ToInteger(double value) noexcept {
  using LIMITS = std::numeric_limits<INTEGER>;
  return static_cast<INTEGER>(
      std::clamp<double>(std::nearbyint(value), LIMITS::min(), LIMITS::max()));
}

float ToFloat(double value) noexcept {
  return static_cast<float>(value);
}

/// Makes the file; `encode` turns a value of type VALUE into `components` numbers.
template <class VALUE, class PIXEL, class FILL, class ENCODE>
void WritePixels(const std::string& path, std::int64_t width, std::int64_t height, PIXEL_TYPE type,
                 const FILL& fill, ENCODE encode) {
  MEM_MGR raster;
  raster.Create(path.c_str(), 0, 0, width - 1, height - 1, type);
  PIXEL* const* rows = raster.Rows<PIXEL>();
  ForEachLine(height, [&](std::int64_t line) {
    std::vector<VALUE> values(static_cast<std::size_t>(width));
    fill(line, values);
    std::transform(values.begin(), values.end(), rows[line], encode);
  });
}

template <class COMPONENT, class ENCODE>
void WriteComplexPixels(const std::string& path, std::int64_t width, std::int64_t height,
                        PIXEL_TYPE type, const COMPLEX_LINE& fill, ENCODE encode) {
  using PIXEL = std::array<COMPONENT, 2>;
  WritePixels<std::complex<double>, PIXEL>(
      path, width, height, type, fill, [encode](const std::complex<double>& value) {
        return PIXEL{encode(value.real()), encode(value.imag())};
      });
}

[[noreturn]] void RefuseType(const std::string& path) {
  throw std::invalid_argument("can not write pixels of this type into " + path);
}

}  // namespace

void WriteRaster(const std::string& path, std::int64_t width, std::int64_t height, PIXEL_TYPE type,
                 const COMPLEX_LINE& fill) {
  switch (type) {
    case PIXEL_TYPE::C_INT_16:
      return WriteComplexPixels<std::int16_t>(path, width, height, type, fill,
                                              ToInteger<std::int16_t>);
    case PIXEL_TYPE::C_FLT_2:
      return WriteComplexPixels<std::uint16_t>(path, width, height, type, fill, DoubleToBinary16);
    case PIXEL_TYPE::C_FLT_6:
      return WriteComplexPixels<float>(path, width, height, type, fill, ToFloat);
    default:
      RefuseType(path);
  }
}

void WriteRealRaster(const std::string& path, std::int64_t width, std::int64_t height,
                     PIXEL_TYPE type, const REAL_LINE& fill) {
  switch (type) {
    case PIXEL_TYPE::U_INT_8:
      return WritePixels<double, std::uint8_t>(path, width, height, type, fill,
                                               ToInteger<std::uint8_t>);
    case PIXEL_TYPE::FLT_6:
      return WritePixels<double, float>(path, width, height, type, fill, ToFloat);
    default:
      RefuseType(path);
  }
}
