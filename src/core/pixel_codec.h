#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include "base/complex.h"
#include "raster/pixel_type.h"

// A codec knows the pixel type, its components, and what numbers these stand for. The list at the
// end holds all of them.

/// Component of a complex 16-bit integer pixel.
struct INT_16_CODEC {
  static constexpr PIXEL_TYPE pixel_type = PIXEL_TYPE::C_INT_16;
  using COMPONENT = std::int16_t;
  using PIXEL = COMPLEX<COMPONENT>;

  static double Decode(COMPONENT component) noexcept { return component; }

  /// Saturates, and rounds half away from zero. NaN becomes 0.
  static COMPONENT Encode(double value) noexcept {
    if (std::isnan(value)) {
      return 0;
    }
    if (value > 32767.0) {
      return 32767;
    }
    if (value < -32768.0) {
      return -32768;
    }
    return static_cast<COMPONENT>(value > 0.0 ? value + 0.5 : value - 0.5);
  }

  /// Whether it stands at an end of the range, as what lies beyond is stored.
  static bool IsAtEnd(COMPONENT component) noexcept {
    return component == 32767 || component == -32768;
  }
  static bool IsFinite(COMPONENT) noexcept { return true; }
};

/// Component of a complex binary16 pixel, by the format's own rules: no subnormal numbers and no
/// negative zero are ever written, and on reading an exponent field of 0 counts as a normal
/// number's, except for the pattern 0x0000. The processor's conversions differ.
struct BINARY_16_CODEC {
  static constexpr PIXEL_TYPE pixel_type = PIXEL_TYPE::C_FLT_2;
  using COMPONENT = std::uint16_t;
  using PIXEL = COMPLEX<COMPONENT>;

  static double Decode(COMPONENT component) noexcept {
    if (component == 0) {
      return 0.0;
    }
    const std::uint64_t sign = static_cast<std::uint64_t>(component & 0x8000U) << 48;
    const std::uint64_t exponent = (component >> 10) & 0x1FU;
    const std::uint64_t mantissa = component & 0x3FFU;
    if (exponent == 0x1F) {
      const std::uint64_t infinity = sign | 0x7FF0000000000000U;
      return std::bit_cast<double>(mantissa == 0 ? infinity : infinity | 0x000FFFFFFFFFFFFFU);
    }
    constexpr std::uint64_t bias_difference = 1008;  // 1023 of a double - 15 of a binary16
    return std::bit_cast<double>(sign | (exponent + bias_difference) << 52 | mantissa << 42);
  }

  /// Saturates finite and infinite magnitudes at 65504, rounds half up on the magnitude (from the
  /// first dropped bit alone), and flushes magnitudes that are below 2^-14 after rounding to +0.
  static COMPONENT Encode(double value) noexcept {
    if (value > 65504.0) {
      return 0x7BFF;
    }
    if (value < -65504.0) {
      return 0xFBFF;
    }
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const auto sign = static_cast<unsigned>(bits >> 48) & 0x8000U;
    auto exponent = static_cast<unsigned>(bits >> 52) & 0x7FFU;
    auto mantissa = 0x800U | (static_cast<unsigned>(bits >> 41) & 0x7FFU);
    if (exponent != 0x7FF) {
      ++mantissa;
    }
    if (mantissa == 0x1000) {
      ++exponent;
      mantissa = 0;
    } else {
      mantissa >>= 1;
    }
    if (exponent <= 0x3F0) {
      return 0;
    }
    if (exponent >= 0x40F) {
      return static_cast<COMPONENT>(sign | (exponent == 0x7FF ? 0x7FFFU : 0x7C00U));
    }
    return static_cast<COMPONENT>(sign | ((exponent - 0x3F0) & 0x1FU) << 10 | (mantissa & 0x3FFU));
  }

  static bool IsAtEnd(COMPONENT component) noexcept { return (component & 0x7FFFU) == 0x7BFF; }
  static bool IsFinite(COMPONENT component) noexcept { return (component & 0x7FFFU) <= 0x7BFF; }
};

template <class... CODECS>
struct CODEC_LIST {};

/// The pixels that are resampled. Whatever there is for every kind of them follows from this list.
using PIXEL_CODECS = CODEC_LIST<INT_16_CODEC, BINARY_16_CODEC>;
