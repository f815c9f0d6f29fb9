#pragma once

// Part of the translation units that are compiled once for every level of the processor. What is
// defined here differs between them and must not be shared by the linker, hence the unnamed
// namespace. For the same reason nothing of the standard library is used that could leave
// functions behind.
//
// All that a processor needs of its own stands here; the rest is written in these types.

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

#include <cstdint>
#include <utility>

#include "base/complex.h"

namespace {  // NOLINT(cert-dcl59-cpp)

/// As many doubles as a register holds.
#if defined(__AVX512F__)
inline constexpr int lanes = 8;
#elif defined(__AVX2__)
inline constexpr int lanes = 4;
#else
inline constexpr int lanes = 2;
#endif
using LANES [[gnu::vector_size(lanes * sizeof(double))]] = double;
using UNALIGNED_LANES [[gnu::vector_size(lanes * sizeof(double)), gnu::aligned(8)]] = double;

/// As `MaskOf` tells them. The compiler warns of the functions of AVX-512 without a mask, which
/// leave a register undefined on their way.
inline constexpr unsigned all_lanes = (1U << lanes) - 1;

/// What comparisons of lanes give: all bits of a lane set or none.
using LANE_FLAGS [[gnu::vector_size(lanes * sizeof(double))]] = long long;

inline LANES Load(const double* values) {
  return *reinterpret_cast<const UNALIGNED_LANES*>(values);
}
inline void Store(LANES value, double* values) {
  *reinterpret_cast<UNALIGNED_LANES*>(values) = value;
}

/// Whether a load of lanes from any address takes longer than to make them of others: one as long
/// as a cache line always reads two of them.
#if defined(__AVX512F__)
inline constexpr bool loads_are_dear = true;
#else
inline constexpr bool loads_are_dear = false;
#endif

/// Lanes `FIRST` and later of the first vector, then as many of the second as are missing.
template <int FIRST, int... LANE>
LANES Shifted(LANES first, LANES second, std::integer_sequence<int, LANE...>) {
  return __builtin_shufflevector(first, second, FIRST + LANE...);
}
template <int FIRST>
[[gnu::always_inline]] inline LANES Shifted(LANES first, LANES second) {
#if defined(__AVX512F__)
  return reinterpret_cast<LANES>(_mm512_maskz_alignr_epi64(
      all_lanes, reinterpret_cast<__m512i>(second), reinterpret_cast<__m512i>(first), FIRST));
#else
  return Shifted<FIRST>(first, second, std::make_integer_sequence<int, lanes>());
#endif
}

/// a * b + c, rounded once where the processor can. Contraction by the compiler is off, so that
/// every sum of the fast core has the same rounding wherever it is computed.
inline LANES MultiplyAdd(LANES a, LANES b, LANES c) {
#if defined(__AVX512F__)
  return _mm512_fmadd_pd(a, b, c);
#elif defined(__FMA__)
  return _mm256_fmadd_pd(a, b, c);
#elif defined(__aarch64__)
  return vfmaq_f64(c, a, b);
#else
  return a * b + c;
#endif
}

#if defined(__x86_64__) && !defined(__AVX2__)
// The compiler takes flags apart where the processor has no instruction for lanes of integers.
inline LANE_FLAGS Less(LANES a, LANES b) {
  return reinterpret_cast<LANE_FLAGS>(_mm_cmplt_pd(a, b));
}
inline LANE_FLAGS Equal(LANES a, LANES b) {
  return reinterpret_cast<LANE_FLAGS>(_mm_cmpeq_pd(a, b));
}
inline LANES Choose(LANE_FLAGS flags, LANES set, LANES unset) {
  return reinterpret_cast<LANES>((flags & reinterpret_cast<LANE_FLAGS>(set)) |
                                 (~flags & reinterpret_cast<LANE_FLAGS>(unset)));
}
#else
inline LANE_FLAGS Less(LANES a, LANES b) {
  return a < b;
}
inline LANE_FLAGS Equal(LANES a, LANES b) {
  return a == b;
}
/// `set` where a flag is set, else `unset`.
inline LANES Choose(LANE_FLAGS flags, LANES set, LANES unset) {
  return flags ? set : unset;
}
#endif

/// One bit a lane, the lowest one for the first.
inline unsigned MaskOf(LANE_FLAGS flags) {
#if defined(__AVX512F__)
  return static_cast<unsigned>(_mm512_movepi64_mask(reinterpret_cast<__m512i>(flags)));
#elif defined(__AVX2__)
  return static_cast<unsigned>(_mm256_movemask_pd(reinterpret_cast<__m256d>(flags)));
#elif defined(__x86_64__)
  return static_cast<unsigned>(_mm_movemask_pd(reinterpret_cast<__m128d>(flags)));
#else
  return static_cast<unsigned>((flags[0] & 1) | (flags[1] & 2));
#endif
}

/// Adding it to a double of a magnitude below 2^51 rounds to an integer, which then stands in the
/// last bits of the mantissa.
inline constexpr double to_integer = 0x1.8p52;

/// The largest integers not above the values, from 0 to 2^31; any value for others.
inline LANES Floor(LANES values) {
#if defined(__AVX512F__)
  return _mm512_maskz_roundscale_pd(all_lanes, values, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
#elif defined(__AVX2__)
  return _mm256_floor_pd(values);
#elif defined(__aarch64__)
  return vrndmq_f64(values);
#else
  return _mm_cvtepi32_pd(_mm_cvttpd_epi32(values));
#endif
}

// Single footprints: two neighbouring complex numbers of each of as many lines as fit.

#if defined(__AVX2__)

inline constexpr int pair_lines = lanes / 4;
using HALVES [[gnu::vector_size(lanes * sizeof(std::int32_t))]] = std::int32_t;
using FLOATS [[gnu::vector_size(lanes * sizeof(float))]] = float;
/// re, im, re, im of the first line, then of the second one.
struct COMPLEX_PAIRS {
  LANES value;
};
inline COMPLEX_PAIRS Multiply(COMPLEX_PAIRS a, COMPLEX_PAIRS b) {
  return {a.value * b.value};
}
inline COMPLEX_PAIRS MultiplyAdd(COMPLEX_PAIRS a, COMPLEX_PAIRS b, COMPLEX_PAIRS c) {
  return {MultiplyAdd(a.value, b.value, c.value)};
}
inline COMPLEX_PAIRS ToDouble(HALVES integers) {
#if defined(__AVX512F__)
  return {_mm512_maskz_cvtepi32_pd(all_lanes, reinterpret_cast<__m256i>(integers))};
#else
  return {_mm256_cvtepi32_pd(reinterpret_cast<__m128i>(integers))};
#endif
}
inline COMPLEX_PAIRS ToDouble(FLOATS floats) {
#if defined(__AVX512F__)
  return {_mm512_maskz_cvtps_pd(all_lanes, floats)};
#else
  return {_mm256_cvtps_pd(floats)};
#endif
}
/// The components of two pixels of each line.
inline HALVES LoadHalves(const void* const* pixels) {
  const __m128i first = _mm_loadl_epi64(static_cast<const __m128i*>(pixels[0]));
#if defined(__AVX512F__)
  const __m128i second = _mm_loadl_epi64(static_cast<const __m128i*>(pixels[1]));
  return reinterpret_cast<HALVES>(_mm256_cvtepi16_epi32(_mm_unpacklo_epi64(first, second)));
#else
  return reinterpret_cast<HALVES>(_mm_cvtepi16_epi32(first));
#endif
}
/// weights[0] in both parts of every first number, weights[1] in those of the second.
inline COMPLEX_PAIRS TwiceEach(const double* w) {
#if defined(__AVX512F__)
  return {LANES{w[0], w[0], w[1], w[1], w[0], w[0], w[1], w[1]}};
#else
  return {LANES{w[0], w[0], w[1], w[1]}};
#endif
}
/// The sum of both numbers of each line.
inline void StoreSums(COMPLEX_PAIRS pairs, COMPLEX<double>* sums) {
#if defined(__AVX512F__)
  const LANES total =
      pairs.value + __builtin_shufflevector(pairs.value, pairs.value, 2, 3, 0, 1, 6, 7, 4, 5);
#else
  const LANES total = pairs.value + __builtin_shufflevector(pairs.value, pairs.value, 2, 3, 0, 1);
#endif
  for (int i = 0; i < pair_lines; ++i) {
    sums[i] = {total[4 * i], total[4 * i + 1]};
  }
}

#else

inline constexpr int pair_lines = 1;
using HALVES [[gnu::vector_size(16)]] = std::int32_t;
using FLOATS [[gnu::vector_size(16)]] = float;
struct COMPLEX_PAIRS {
  LANES first;
  LANES second;
};
inline COMPLEX_PAIRS Multiply(COMPLEX_PAIRS a, COMPLEX_PAIRS b) {
  return {a.first * b.first, a.second * b.second};
}
inline COMPLEX_PAIRS MultiplyAdd(COMPLEX_PAIRS a, COMPLEX_PAIRS b, COMPLEX_PAIRS c) {
  return {MultiplyAdd(a.first, b.first, c.first), MultiplyAdd(a.second, b.second, c.second)};
}
inline COMPLEX_PAIRS TwiceEach(const double* weights) {
  const LANES zero{};
  return {zero + weights[0], zero + weights[1]};
}
inline void StoreSums(COMPLEX_PAIRS pairs, COMPLEX<double>* sums) {
  const LANES total = pairs.first + pairs.second;
  sums[0] = {total[0], total[1]};
}
#if defined(__x86_64__)
inline HALVES LoadHalves(const void* const* pixels) {
  const __m128i halves = _mm_loadl_epi64(static_cast<const __m128i*>(pixels[0]));
  return reinterpret_cast<HALVES>(_mm_srai_epi32(_mm_unpacklo_epi16(halves, halves), 16));
}
inline COMPLEX_PAIRS ToDouble(HALVES integers) {
  const auto all = reinterpret_cast<__m128i>(integers);
  return {_mm_cvtepi32_pd(all), _mm_cvtepi32_pd(_mm_unpackhi_epi64(all, all))};
}
inline COMPLEX_PAIRS ToDouble(FLOATS floats) {
  return {_mm_cvtps_pd(floats), _mm_cvtps_pd(_mm_movehl_ps(floats, floats))};
}
#else
inline HALVES LoadHalves(const void* const* pixels) {
  return vmovl_s16(vreinterpret_s16_u8(vld1_u8(static_cast<const std::uint8_t*>(pixels[0]))));
}
inline COMPLEX_PAIRS ToDouble(HALVES integers) {
  return {vcvtq_f64_s64(vmovl_s32(vget_low_s32(integers))),
          vcvtq_f64_s64(vmovl_high_s32(integers))};
}
inline COMPLEX_PAIRS ToDouble(FLOATS floats) {
  return {vcvt_f64_f32(vget_low_f32(floats)), vcvt_high_f64_f32(floats)};
}
#endif

#endif

// What follows is the same for all processors.

struct COMPLEX_LANES {
  LANES re;
  LANES im;
};

/// All bits of the lanes whose bits are set: what `MaskOf` tells, backwards.
inline LANE_FLAGS FlagsOf(unsigned bits) {
  LANE_FLAGS bit_of_lane{};
  for (int i = 0; i < lanes; ++i) {
    bit_of_lane[i] = 1LL << i;
  }
  return (bit_of_lane & static_cast<long long>(bits)) != 0;
}

}  // namespace
