#include "common/pair_lines.h"

#include <limits>
#include <stdexcept>
#include <utility>

namespace {

using VALUE = PAIR_LINES::VALUE;

bool HoldsData(const VALUE& value) noexcept {
  const double power = value.real() * value.real() + value.imag() * value.imag();
  return power > 0.0 && power <= std::numeric_limits<double>::max();
}

}  // namespace

PAIR_LINES::PAIR_LINES(const RASTER_READER& a, const RASTER_READER& b,
                       std::vector<const RASTER_READER*> masks)
    : a_(a), b_(b), masks_(std::move(masks)) {
  CheckSameSize(a, b);
  for (const RASTER_READER* mask : masks_) {
    CheckSameSize(a, *mask);
  }
}

void PAIR_LINES::Read(std::int64_t line, std::int64_t first, std::int64_t count,
                      LINE& pixels) const {
  const auto size = static_cast<std::size_t>(count);
  pixels.a.resize(size);
  pixels.b.resize(size);
  a_.ReadLine(line, first, pixels.a);
  b_.ReadLine(line, first, pixels.b);
  for (std::size_t i = 0; i < size; ++i) {
    if (!HoldsData(pixels.a[i]) || !HoldsData(pixels.b[i])) {
      pixels.a[i] = pixels.b[i] = 0.0;
    }
  }
  for (const RASTER_READER* mask : masks_) {
    pixels.mask.resize(size);
    mask->ReadLine(line, first, pixels.mask);
    for (std::size_t i = 0; i < size; ++i) {
      if (pixels.mask[i] == 0.0) {
        pixels.a[i] = pixels.b[i] = 0.0;
      }
    }
  }
}

void CheckSameSize(const RASTER_READER& a, const RASTER_READER& b) {
  if (a.Width() != b.Width() || a.Height() != b.Height()) {
    throw std::invalid_argument(a.Path() + " and " + b.Path() + " have different sizes");
  }
}

PAIR_SUMS SumPairs(std::span<const VALUE> a, std::span<const VALUE> b) {
  double re = 0.0;
  double im = 0.0;
  PAIR_SUMS sums;
  for (std::size_t i = 0; i < a.size(); ++i) {
    re += a[i].real() * b[i].real() + a[i].imag() * b[i].imag();
    im += a[i].imag() * b[i].real() - a[i].real() * b[i].imag();
    const double power = a[i].real() * a[i].real() + a[i].imag() * a[i].imag();
    sums.power_a += power;
    sums.power_b += b[i].real() * b[i].real() + b[i].imag() * b[i].imag();
    sums.weight += power > 0.0 ? 1.0 : 0.0;
  }
  sums.cross = {re, im};
  return sums;
}
