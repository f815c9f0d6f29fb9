#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "raster/pixel_type.h"

/// What became of numbers when they were encoded as pixels; each part of a pair counts.
struct ENCODING_COUNTS {
  std::int64_t clipped = 0;       ///< beyond the type's range, stored as its end
  std::int64_t rounded = 0;       ///< within the range, but stored as another number
  std::int64_t vanished = 0;      ///< those of the rounded numbers that were not 0 and are now
  std::int64_t not_a_number = 0;  ///< NaN, stored as 0 in an integer type
};

/// Whether a pixel is a pair of real and imaginary part.
bool HoldsPairs(PIXEL_TYPE type) noexcept;

/// Encodes numbers, one a pixel or two a pair, to `pixels` on. Integers are rounded to the nearest,
/// halves to even. `flt_6` and `flt_15` keep infinities and NaN; binary16: see `DoubleToBinary16`.
/// Throws std::invalid_argument for types that hold no numbers.
void EncodePixels(PIXEL_TYPE type, std::span<const double> numbers, std::byte* pixels,
                  ENCODING_COUNTS& counts);

/// Encodes numbers as binary16 of the standard, subnormal ones included: what was binary16 before
/// stays as it was, but for the sign of zeros, which `resample` would take for numbers.
void EncodeStandardBinary16(std::span<const double> numbers, std::byte* pixels,
                            ENCODING_COUNTS& counts);
