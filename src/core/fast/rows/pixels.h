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

/// Bits whose bit 62 is set for infinities, NaN and magnitudes of 2^30 and more.
std::uint64_t Bits(double value) {
  return __builtin_bit_cast(std::uint64_t, value * 0x1p-29);
}
constexpr std::uint64_t too_large = std::uint64_t{1} << 62;

/// Any number of a magnitude below 2^30 in place of one for which `Bits` has bit 62 set.
double Replaced(double value) {
  return (Bits(value) & too_large) == 0 ? value : 0.0;
}

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

/// Looks at all values first: not every one fits into the integer that it may be converted to.
template <class PIXEL, class ENCODE>
bool EncodeWith(CONST_COMPLEX_ROW values, int count, PIXEL* encoded, ENCODE encode) {
  const double* __restrict re = values.re;
  const double* __restrict im = values.im;
  const auto store = [encoded](int x, std::uint32_t real, std::uint32_t imaginary) {
    const std::uint32_t word = (real & 0xFFFFU) | imaginary << 16;
    __builtin_memcpy(static_cast<void*>(encoded + x), &word, sizeof(word));
  };
  std::uint64_t all_bits = 0;
  for (int x = 0; x < count; ++x) {
    all_bits |= Bits(re[x]) | Bits(im[x]);
  }
  if ((all_bits & too_large) == 0) {
    for (int x = 0; x < count; ++x) {
      store(x, encode(re[x]), encode(im[x]));
    }
    return true;
  }
  for (int x = 0; x < count; ++x) {
    store(x, encode(Replaced(re[x])), encode(Replaced(im[x])));
  }
  return false;
}

bool EncodeRow(CONST_COMPLEX_ROW values, int count, INT_16* encoded) {
  return EncodeWith(values, count, encoded, EncodeInt16);
}
bool EncodeRow(CONST_COMPLEX_ROW values, int count, BINARY_16* encoded) {
  return EncodeWith(values, count, encoded, EncodeBinary16);
}

}  // namespace
