#include "picture/line_sums.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <vector>

namespace {

using LINE = std::vector<std::complex<double>>;

template <class SUMS_OF_VALUE>
LINE_SUMS LineSums(const RASTER_READER& image, SUMS_OF_VALUE sums_of_value) {
  return [&image, sums_of_value, values = LINE()](std::int64_t line,
                                                  std::span<PAIR_SUMS> pixels) mutable {
    values.resize(pixels.size());
    image.ReadLine(line, 0, values);
    std::transform(values.begin(), values.end(), pixels.begin(), sums_of_value);
  };
}

}  // namespace

LINE_SUMS SumsOf(const RASTER_READER& image) {
  return LineSums(image, [](std::complex<double> value) { return PAIR_SUMS::Of(value, 1.0); });
}

LINE_SUMS SumsOf(const RASTER_READER& a, const RASTER_READER& b) {
  return [&a, &b, values_a = LINE(), values_b = LINE()](std::int64_t line,
                                                        std::span<PAIR_SUMS> pixels) mutable {
    values_a.resize(pixels.size());
    values_b.resize(pixels.size());
    a.ReadLine(line, 0, values_a);
    b.ReadLine(line, 0, values_b);
    std::transform(values_a.begin(), values_a.end(), values_b.begin(), pixels.begin(),
                   PAIR_SUMS::Of);
  };
}

LINE_SUMS ValuesOf(const RASTER_READER& image) {
  return LineSums(image, [](std::complex<double> value) {
    return std::isfinite(value.real()) ? PAIR_SUMS{.cross = value.real(), .weight = 1.0}
                                       : PAIR_SUMS{};
  });
}

LINE_SUMS GapsOf(const RASTER_READER& mask) {
  return LineSums(mask, [](std::complex<double> value) {
    return PAIR_SUMS::Of(value == 0.0 ? 1.0 : 0.0, 1.0);
  });
}
