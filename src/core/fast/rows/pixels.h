#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

#include "core/fast/row_functions.h"
#include "core/fast/rows/lanes.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

// From stored pixels to doubles and back: what the codecs do with single components. The codecs'
// own functions are not called here: the linker would share them.

using INT_16 = INT_16_CODEC::PIXEL;
using BINARY_16 = BINARY_16_CODEC::PIXEL;

/// Real part in the low half, imaginary part in the high one. Pixels behind a colour map can have
/// any address, so no reference to one may exist.
template <class PIXEL>
std::uint32_t Word(const PIXEL* pixel) {
  std::uint32_t word;
  __builtin_memcpy(&word, static_cast<const void*>(pixel), sizeof(word));
  return word;
}

std::int32_t RealHalf(std::uint32_t word) {
  return static_cast<std::int32_t>(word << 16) >> 16;
}
std::int32_t ImaginaryHalf(std::uint32_t word) {
  return static_cast<std::int32_t>(word) >> 16;
}

// Constants of the conversion from binary16 to binary32 bits: exponent and mantissa move to their
// place with the sign, the exponent by the difference of the biases, 127 - 15.
constexpr std::int32_t moved_mask = static_cast<std::int32_t>(0x8FFFE000U);
constexpr std::int32_t bias_step = 112 << 23;
constexpr std::int32_t largest_finite = 0x7BFF;

/// Takes an exponent field of 0 for a normal number's, except for the pattern 0x0000. Infinities
/// become NaN: either way the result is left to the plain core.
double DecodeBinary16(std::int32_t half) {
  std::int32_t bits = ((half << 13) & moved_mask) + bias_step;
  bits |= -static_cast<std::int32_t>((half & 0x7FFF) > largest_finite);
  bits &= -static_cast<std::int32_t>(half != 0);
  return static_cast<double>(__builtin_bit_cast(float, bits));
}

void DecodeRow(const INT_16* pixels, int count, COMPLEX_ROW decoded) {
  double* __restrict re = decoded.re;
  double* __restrict im = decoded.im;
  for (int x = 0; x < count; ++x) {
    const std::uint32_t word = Word(pixels + x);
    re[x] = static_cast<double>(RealHalf(word));
    im[x] = static_cast<double>(ImaginaryHalf(word));
  }
}

void DecodeRow(const BINARY_16* pixels, int count, COMPLEX_ROW decoded) {
  double* __restrict re = decoded.re;
  double* __restrict im = decoded.im;
  for (int x = 0; x < count; ++x) {
    const std::uint32_t word = Word(pixels + x);
    re[x] = DecodeBinary16(RealHalf(word));
    im[x] = DecodeBinary16(ImaginaryHalf(word));
  }
}

COMPLEX_PAIRS DecodePairs(const INT_16* const* pixels) {
  return ToDouble(LoadHalves(reinterpret_cast<const void* const*>(pixels)));
}

/// The same steps as for a single binary16 number.
COMPLEX_PAIRS DecodePairs(const BINARY_16* const* pixels) {
  const HALVES half = LoadHalves(reinterpret_cast<const void* const*>(pixels));
  HALVES bits = ((half << 13) & moved_mask) + bias_step;
  bits |= (half & 0x7FFF) > largest_finite;
  bits &= half != 0;
  return ToDouble(reinterpret_cast<FLOATS>(bits));
}

/// Bits whose bit 62 is set for infinities, NaN and magnitudes of 2^exponent and more.
template <int exponent>
std::uint64_t Bits(double value) {
  constexpr double scale = 2.0 / static_cast<double>(std::uint64_t{1} << exponent);
  return __builtin_bit_cast(std::uint64_t, value * scale);
}
constexpr std::uint64_t too_large = std::uint64_t{1} << 62;

/// Rounds half away from zero and saturates; for magnitudes below 2^30.
std::uint32_t EncodeInt16(double value) {
  const double half = __builtin_copysign(0.5, value);
  std::int32_t integer = static_cast<std::int32_t>(value + half);
  integer = integer > 32767 ? 32767 : integer;
  integer = integer < -32768 ? -32768 : integer;
  return static_cast<std::uint32_t>(integer);
}

/// Works on the upper half of the double: sign, 11 bits of exponent, 20 bits of mantissa. Adding 1
/// below the last kept bit rounds half up and carries into the exponent.
std::uint32_t EncodeBinary16(double value) {
  constexpr std::int32_t bias_difference = 0x3F0 << 10;  // 1023 - 15
  constexpr std::int32_t smallest = bias_difference + 0x0400;
  constexpr std::int32_t largest = bias_difference + largest_finite;
  const auto upper = static_cast<std::int32_t>(__builtin_bit_cast(std::uint64_t, value) >> 32);
  std::int32_t rounded = (((upper & 0x7FFFFFFF) >> 9) + 1) >> 1;
  rounded = rounded < largest ? rounded : largest;
  const std::int32_t half = (rounded - bias_difference) | ((upper >> 16) & 0x8000);
  return static_cast<std::uint32_t>(half & -static_cast<std::int32_t>(rounded >= smallest));
}

template <class PIXEL>
void Store(PIXEL* pixel, std::uint32_t real, std::uint32_t imaginary) {
  const std::uint32_t word = (real & 0xFFFFU) | imaginary << 16;
  __builtin_memcpy(static_cast<void*>(pixel), &word, sizeof(word));
}

/// For any values. Not every one fits into the integer that it may be converted to.
template <class PIXEL, class CODE>
ENCODED_ROW EncodeLarge(CONST_COMPLEX_ROW values, int count, PIXEL* encoded, CODE code) {
  const auto replaced = [](double value) {
    return (Bits<30>(value) & too_large) == 0 ? value : 0.0;
  };
  std::uint64_t all_bits = 0;
  int at_ends = 0;
  for (int x = 0; x < count; ++x) {
    all_bits |= Bits<30>(values.re[x]) | Bits<30>(values.im[x]);
    const std::uint32_t real = code.Encode(replaced(values.re[x]));
    const std::uint32_t imaginary = code.Encode(replaced(values.im[x]));
    Store(encoded + x, real, imaginary);
    at_ends += (code.IsAtEnd(real) ? 1 : 0) + (code.IsAtEnd(imaginary) ? 1 : 0);
  }
  return {(all_bits & too_large) == 0, at_ends};
}

/// Looks at all values first: usually none comes near an end of the range.
template <class PIXEL, class CODE>
ENCODED_ROW EncodeWith(CONST_COMPLEX_ROW values, int count, PIXEL* encoded, CODE code) {
  const double* __restrict re = values.re;
  const double* __restrict im = values.im;
  std::uint64_t all_bits = 0;
  for (int x = 0; x < count; ++x) {
    all_bits |= Bits<CODE::safe_exponent>(re[x]) | Bits<CODE::safe_exponent>(im[x]);
  }
  if ((all_bits & too_large) != 0) {
    return EncodeLarge(values, count, encoded, code);
  }
  for (int x = 0; x < count; ++x) {
    Store(encoded + x, code.Encode(re[x]), code.Encode(im[x]));
  }
  return {true, 0};
}

struct INT_16_CODE {
  static constexpr int safe_exponent = 14;  ///< smaller magnitudes are far from either end
  static std::uint32_t Encode(double value) { return EncodeInt16(value); }
  static bool IsAtEnd(std::uint32_t code) {
    return ((code + 0x8001U) & 0xFFFFU) <= 1;  // 0x7FFF and 0x8000
  }
};
struct BINARY_16_CODE {
  static constexpr int safe_exponent = 15;
  static std::uint32_t Encode(double value) { return EncodeBinary16(value); }
  static bool IsAtEnd(std::uint32_t code) { return (code & 0x7FFFU) == largest_finite; }
};

ENCODED_ROW EncodeRow(CONST_COMPLEX_ROW values, int count, INT_16* encoded) {
  return EncodeWith(values, count, encoded, INT_16_CODE());
}
ENCODED_ROW EncodeRow(CONST_COMPLEX_ROW values, int count, BINARY_16* encoded) {
  return EncodeWith(values, count, encoded, BINARY_16_CODE());
}

}  // namespace
