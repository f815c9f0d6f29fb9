#pragma once

#include <cstdint>

/// IEEE binary16 as the tools read and write it: written without a look at the program's own
/// conversion, so that each can be checked against the other.

/// Value of the 16 bits, subnormal numbers, infinities and NaN included.
double Binary16ToDouble(std::uint16_t bits) noexcept;

/// The nearest normal number, ties to even. Magnitudes beyond 65504 saturate there, those below
/// 2^-14 become +0: the program knows no subnormal numbers. NaN becomes 0x7FFF.
std::uint16_t DoubleToBinary16(double value) noexcept;
