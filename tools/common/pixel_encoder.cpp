#include "common/pixel_encoder.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstring>
#include <limits>

#include "common/stored_number.h"

namespace {

/// A stored number and the value that it stands for.
template <class STORED>
struct ENCODED {
  STORED stored;
  double value;
};

/// How numbers become pixels of the type NUMBER: here an integer.
template <class NUMBER>
struct ENCODER {
  static ENCODED<NUMBER> Encode(double number) noexcept {
    using LIMITS = std::numeric_limits<NUMBER>;
    const double rounded = std::isnan(number) ? 0.0 : std::nearbyint(number);
    const double value = std::clamp<double>(rounded, LIMITS::min(), LIMITS::max());
    return {static_cast<NUMBER>(value), value};
  }
  /// Whether a stored value is the end of the range that the number lies beyond.
  static bool IsClipped(double number, double value) noexcept {
    return std::abs(number - value) > 0.5;
  }
};

template <std::floating_point REAL>
struct ENCODER<REAL> {
  static ENCODED<REAL> Encode(double number) noexcept {
    constexpr double largest = std::numeric_limits<REAL>::max();
    const double value = std::isfinite(number) ? std::clamp(number, -largest, largest) : number;
    const auto stored = static_cast<REAL>(value);
    return {stored, static_cast<double>(stored)};
  }
  static bool IsClipped(double number, double value) noexcept {
    return std::abs(value) == std::numeric_limits<REAL>::max() &&
           std::abs(number) > std::abs(value);
  }
};

template <>
struct ENCODER<BINARY_16> {
  static ENCODED<std::uint16_t> Encode(double number) noexcept {
    const std::uint16_t bits = DoubleToBinary16(number);
    return {bits, Binary16ToDouble(bits)};
  }
  static bool IsClipped(double number, double value) noexcept {
    constexpr double largest = 65504.0;
    return std::abs(value) == largest && std::abs(number) > largest;
  }
};

struct STANDARD_BINARY_16_ENCODER : ENCODER<BINARY_16> {
  static ENCODED<std::uint16_t> Encode(double number) noexcept {
    constexpr double steps = 0x1p24;
    const double magnitude = std::nearbyint(std::abs(number) * steps);
    if (!(magnitude < 0x1p10)) {
      return ENCODER<BINARY_16>::Encode(number);
    }
    const int sign = std::signbit(number) && magnitude > 0.0 ? 0x8000 : 0;
    const auto bits = static_cast<std::uint16_t>(sign | static_cast<int>(magnitude));
    return {bits, Binary16ToDouble(bits)};
  }
};

template <class ENCODING>
void Encode(std::span<const double> numbers, std::byte* pixels, ENCODING_COUNTS& counts) {
  for (const double number : numbers) {
    const auto encoded = ENCODING::Encode(number);
    std::memcpy(pixels, &encoded.stored, sizeof encoded.stored);
    pixels += sizeof encoded.stored;
    if (encoded.value == number) {
      continue;
    }
    if (std::isnan(number)) {
      counts.not_a_number += std::isnan(encoded.value) ? 0 : 1;
    } else if (ENCODING::IsClipped(number, encoded.value)) {
      ++counts.clipped;
    } else {
      ++counts.rounded;
      counts.vanished += encoded.value == 0.0 ? 1 : 0;
    }
  }
}

}  // namespace

bool HoldsPairs(PIXEL_TYPE type) noexcept {
  switch (type) {
    case PIXEL_TYPE::C_U_INT_8:
    case PIXEL_TYPE::C_INT_16:
    case PIXEL_TYPE::C_FLT_2:
    case PIXEL_TYPE::C_FLT_6:
    case PIXEL_TYPE::C_FLT_15:
      return true;
    default:
      return false;
  }
}

void EncodePixels(PIXEL_TYPE type, std::span<const double> numbers, std::byte* pixels,
                  ENCODING_COUNTS& counts) {
  VisitStoredNumber(
      type, [&]<class STORED>(STORED) { Encode<ENCODER<STORED>>(numbers, pixels, counts); });
}

void EncodeStandardBinary16(std::span<const double> numbers, std::byte* pixels,
                            ENCODING_COUNTS& counts) {
  Encode<STANDARD_BINARY_16_ENCODER>(numbers, pixels, counts);
}
