#pragma once

#include <bit>
#include <cstdint>

/// IEEE binary16 as the tools read and write it: written without a look at the program's own
/// conversion, so that each can be checked against the other.

/// Value of the 16 bits, subnormal numbers, infinities and NaN included. A binary32 number has the
/// same fields, 13 bits of fraction more and an exponent that is 112 higher.
inline double Binary16ToDouble(std::uint16_t bits) noexcept {
  constexpr std::uint32_t exponent_of_infinity = 0x7C00;
  constexpr std::uint32_t infinity_32 = 0x7F800000;
  const std::uint32_t magnitude = bits & 0x7FFFU;
  const std::uint32_t sign = static_cast<std::uint32_t>(bits & 0x8000U) << 16;
  const std::uint32_t not_finite = magnitude >= exponent_of_infinity ? infinity_32 : 0;
  const auto low = std::bit_cast<float>(sign | magnitude << 13 | not_finite);
  return static_cast<double>(low) * 0x1p112;
}

/// The nearest normal number, ties to even. Magnitudes beyond 65504 saturate there, those below
/// 2^-14 become +0: the program knows no subnormal numbers. NaN becomes 0x7FFF.
std::uint16_t DoubleToBinary16(double value) noexcept;
