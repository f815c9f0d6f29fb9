#pragma once

// Part of the translation units that are compiled once for every level of the processor. What is
// defined here differs between them and must not be shared by the linker, hence the unnamed
// namespace. For the same reason nothing of the standard library is used that could leave
// functions behind.

#include <immintrin.h>

#include <cstdint>

#include "base/complex.h"

namespace {  // NOLINT(cert-dcl59-cpp)

/// a * b + c, rounded once where the processor can. Contraction by the compiler is off, so that
/// every sum of the fast core has the same rounding wherever it is computed.
inline double MultiplyAdd(double a, double b, double c) {
#ifdef __FMA__
  return __builtin_fma(a, b, c);
#else
  return a * b + c;
#endif
}

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

inline LANES Load(const double* values) {
  return *reinterpret_cast<const UNALIGNED_LANES*>(values);
}
inline void Store(LANES value, double* values) {
  *reinterpret_cast<UNALIGNED_LANES*>(values) = value;
}

inline LANES MultiplyAdd(LANES a, LANES b, LANES c) {
#if defined(__AVX512F__)
  return _mm512_fmadd_pd(a, b, c);
#elif defined(__FMA__)
  return _mm256_fmadd_pd(a, b, c);
#else
  return a * b + c;
#endif
}

/// What comparisons of lanes give: all bits of a lane set or none.
using LANE_FLAGS [[gnu::vector_size(lanes * sizeof(double))]] = long long;

/// One bit a lane, the lowest one for the first.
inline unsigned MaskOf(LANE_FLAGS flags) {
#if defined(__AVX512F__)
  return static_cast<unsigned>(_mm512_movepi64_mask(reinterpret_cast<__m512i>(flags)));
#elif defined(__AVX2__)
  return static_cast<unsigned>(_mm256_movemask_pd(reinterpret_cast<__m256d>(flags)));
#else
  return static_cast<unsigned>(_mm_movemask_pd(reinterpret_cast<__m128d>(flags)));
#endif
}

/// Two complex numbers: re, im, re, im.
#ifdef __AVX2__
struct COMPLEX_PAIR {
  __m256d value;
};
inline COMPLEX_PAIR MultiplyAdd(COMPLEX_PAIR a, COMPLEX_PAIR b, COMPLEX_PAIR c) {
  return {_mm256_fmadd_pd(a.value, b.value, c.value)};
}
inline COMPLEX_PAIR ZeroPair() {
  return {_mm256_setzero_pd()};
}
/// values[0] in both parts of the first number, values[1] in those of the second.
inline COMPLEX_PAIR TwiceEach(const double* values) {
  return {_mm256_permute4x64_pd(_mm256_castpd128_pd256(_mm_loadu_pd(values)), 0x50)};
}
inline COMPLEX_PAIR PairOf(double re, double im) {
  return {_mm256_setr_pd(re, im, 0.0, 0.0)};
}
/// The sum of both numbers.
inline __m128d Sum(COMPLEX_PAIR pair) {
  return _mm_add_pd(_mm256_castpd256_pd128(pair.value), _mm256_extractf128_pd(pair.value, 1));
}
inline COMPLEX_PAIR ToDouble(__m128i integers) {
  return {_mm256_cvtepi32_pd(integers)};
}
inline COMPLEX_PAIR ToDouble(__m128 floats) {
  return {_mm256_cvtps_pd(floats)};
}
#else
struct COMPLEX_PAIR {
  __m128d first;
  __m128d second;
};
inline COMPLEX_PAIR MultiplyAdd(COMPLEX_PAIR a, COMPLEX_PAIR b, COMPLEX_PAIR c) {
  return {a.first * b.first + c.first, a.second * b.second + c.second};
}
inline COMPLEX_PAIR ZeroPair() {
  return {_mm_setzero_pd(), _mm_setzero_pd()};
}
inline COMPLEX_PAIR TwiceEach(const double* values) {
  return {_mm_set1_pd(values[0]), _mm_set1_pd(values[1])};
}
inline COMPLEX_PAIR PairOf(double re, double im) {
  return {_mm_setr_pd(re, im), _mm_setzero_pd()};
}
inline __m128d Sum(COMPLEX_PAIR pair) {
  return pair.first + pair.second;
}
inline COMPLEX_PAIR ToDouble(__m128i integers) {
  return {_mm_cvtepi32_pd(integers), _mm_cvtepi32_pd(_mm_unpackhi_epi64(integers, integers))};
}
inline COMPLEX_PAIR ToDouble(__m128 floats) {
  return {_mm_cvtps_pd(floats), _mm_cvtps_pd(_mm_movehl_ps(floats, floats))};
}
#endif

}  // namespace
