#pragma once

// The row functions, compiled once for every level of the processor: see lanes.h.
//
// Loops over columns are plain, so that the compiler makes vectors of them. The filters name the
// vector type themselves because the compiler does not see through their inner loops over taps.

#include "core/fast/lanes.h"
#include "core/fast/row_functions.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

// Offsets stay below longest_kernel * strip_columns.
// NOLINTBEGIN(bugprone-implicit-widening-of-multiplication-result)

// Positions. The order of operations is that of the mappings, so the results are the same bits.

void MatrixPositions(const MATRIX_COLUMNS& columns, double line, double line_fraction, int count,
                     double* __restrict rg, double* __restrict az) {
  const double before = 1.0 - line_fraction;
  for (int x = 0; x < count; ++x) {
    rg[x] =
        columns.sample[x] + (before * columns.rg_before[x] + columns.rg_after[x] * line_fraction);
    az[x] = line + (before * columns.az_before[x] + columns.az_after[x] * line_fraction);
  }
}

void PolynomialPositions(const POLYNOMIAL_COLUMNS& columns, const POLYNOMIAL_LINE& terms,
                         double line, const double* origin, int count,
                         double* __restrict position) {
  for (int x = 0; x < count; ++x) {
    position[x] = terms.c0_c1_y + columns.c2_x[x] + columns.c3_x[x] * line + terms.c4_y_y +
                  columns.c5_x_x[x] + origin[x];
  }
}

std::uint64_t FindUnsteady(const COLUMN_INTERVALS& in, const AZIMUTH_LIMITS& limits, double line,
                           const double* rg, const double* az, double* fa) {
  std::uint64_t steady = 0;
  for (int x = 0; x < strip_columns; x += lanes) {
    const LANES range = Load(rg + x);
    const LANES azimuth = Load(az + x);
    const LANES fraction = azimuth - (line + Load(in.line_shift + x));
    Store(fraction, fa + x);
    const LANE_FLAGS flags = (range >= Load(in.rg_first + x)) & (range < Load(in.rg_end + x)) &
                             (fraction >= Load(in.fa_first + x)) &
                             (fraction < Load(in.fa_end + x)) & (azimuth > limits.above) &
                             (azimuth < limits.below);
    steady |= std::uint64_t{MaskOf(flags)} << x;
  }
  return ~steady;
}

// Phases

void Centroid(const RANGE_POLYNOMIAL& polynomial, const double* range_time, int count,
              double* value) {
  const LANES zero{};
  const LANES nan = zero + __builtin_nan("");
  const double* const c = polynomial.coefficients;
  const int degree = polynomial.count - 1;
  for (int x = 0; x < count; x += lanes) {
    const LANES dt = Load(range_time + x) - polynomial.reference_time;
    LANES sum = zero + c[degree];
    for (int k = degree - 1; k >= 0; --k) {
      sum = sum * dt + c[k];
    }
    sum *= polynomial.scale;
    const LANE_FLAGS fits = (sum >= -polynomial.limit) & (sum <= polynomial.limit);
    Store(fits ? sum : nan, value + x);
  }
}

/// What is left of turns without whole ones, which is exact.
inline LANES WithoutWhole(LANES turns) {
  constexpr double magic = 0x1.8p52;  // adding it rounds to an integer
  return turns - ((turns + magic) - magic);
}

// Whole turns a line are whole turns over whole lines, and are left away there: what remains is
// rounded less.

void RampTurns(const double* slope, const double* fa, double offset, int count, double* last) {
  for (int x = 0; x < count; x += lanes) {
    const LANES turns = Load(slope + x);
    Store(turns * Load(fa + x) + WithoutWhole(turns) * offset, last + x);
  }
}

void RateTurns(const double* slope, const double* rate, const double* fa, double offset, int length,
               int count, const RATE_TURNS& turns) {
  const double first_rate = 2.0 * offset - (2.0 * length - 3.0);
  for (int x = 0; x < count; x += lanes) {
    const LANES linear = Load(slope + x);
    const LANES quadratic = Load(rate + x);
    const LANES fraction = Load(fa + x);
    const LANES rest = WithoutWhole(linear);
    Store(first_rate * quadratic - rest, turns.first + x);
    Store(2.0 * quadratic, turns.step + x);
    Store(linear * fraction + rest * offset + quadratic * (fraction + offset) * (fraction - offset),
          turns.last + x);
  }
}

struct COMPLEX_LANES {
  LANES re;
  LANES im;
};

/// Reduces by half turns, which is exact, and evaluates polynomials in the square of what is left,
/// at most a quarter turn: interpolations at Chebyshev nodes, with errors below 2e-16 for
/// sin(2 pi r) / r and 1e-17 for cos(2 pi r).
inline COMPLEX_LANES Phasor(LANES turns) {
  const LANES zero{};
  // Adding it rounds to an integer, which then stands in the last bits of the mantissa.
  constexpr double rounder = 6755399441055744.0;  // 3 * 2^51
  const LANES rounded = turns * 2.0 + rounder;
  const LANES r = turns - (rounded - rounder) * 0.5;
  const LANES q = r * r;
  LANES s = zero - 0.6925067010720717;
  s = MultiplyAdd(s, q, zero + 3.817365633469135);
  s = MultiplyAdd(s, q, zero - 15.09450614073429);
  s = MultiplyAdd(s, q, zero + 42.05868995395094);
  s = MultiplyAdd(s, q, zero - 76.70585968962867);
  s = MultiplyAdd(s, q, zero + 81.60524927557977);
  s = MultiplyAdd(s, q, zero - 41.341702240398284);
  s = MultiplyAdd(s, q, zero + 6.283185307179585);
  s *= r;
  LANES c = zero + 0.2719458494999813;
  c = MultiplyAdd(c, q, zero - 1.7132184107005932);
  c = MultiplyAdd(c, q, zero + 7.903462492085097);
  c = MultiplyAdd(c, q, zero - 26.426254066690255);
  c = MultiplyAdd(c, q, zero + 60.24464131316041);
  c = MultiplyAdd(c, q, zero - 85.45681720598061);
  c = MultiplyAdd(c, q, zero + 64.93939402266395);
  c = MultiplyAdd(c, q, zero - 19.739208802178705);
  c = MultiplyAdd(c, q, zero + 1.0);
  // An odd number of half turns changes both signs.
  const LANE_FLAGS flip = reinterpret_cast<LANE_FLAGS>(rounded) << 63;
  return {reinterpret_cast<LANES>(reinterpret_cast<LANE_FLAGS>(c) ^ flip),
          reinterpret_cast<LANES>(reinterpret_cast<LANE_FLAGS>(s) ^ flip)};
}

void SineCosine(const double* turns, int count, COMPLEX_ROW phasor) {
  for (int x = 0; x < count; x += lanes) {
    const COMPLEX_LANES value = Phasor(Load(turns + x));
    Store(value.re, phasor.re + x);
    Store(value.im, phasor.im + x);
  }
}

/// Turns the phasor of the middle column by the small rests, for which the first terms of the
/// series of sine and cosine do: what is left out is below 1e-16.
bool CloseSineCosine(const double* turns, COMPLEX_ROW phasor) {
  const LANES zero{};
  constexpr double limit = 0x1p-10;
  const double middle = turns[strip_columns / 2];
  if (__builtin_fabs(turns[0] - middle) >= limit) {
    return false;  // at little cost where a centroid is steep all along
  }
  const COMPLEX_LANES at_middle = Phasor(zero + middle);
  LANE_FLAGS close = ~LANE_FLAGS{};
  for (int x = 0; x < strip_columns; x += lanes) {
    const LANES rest = Load(turns + x) - middle;
    close &= (rest > -limit) & (rest < limit);
    const LANES q = rest * rest;
    LANES s = zero + 81.60524927607506;                // (2 pi)^5 / 5!
    s = MultiplyAdd(s, q, zero - 41.341702240399755);  // (2 pi)^3 / 3!
    s = MultiplyAdd(s, q, zero + 6.283185307179586) * rest;
    LANES c = zero + 64.93939402266829;                // (2 pi)^4 / 4!
    c = MultiplyAdd(c, q, zero - 19.739208802178716);  // (2 pi)^2 / 2!
    c = MultiplyAdd(c, q, zero + 1.0);
    Store(MultiplyAdd(at_middle.re, c, -(at_middle.im * s)), phasor.re + x);
    Store(MultiplyAdd(at_middle.im, c, at_middle.re * s), phasor.im + x);
  }
  return MaskOf(close) == (1U << lanes) - 1;
}

// Filters. LENGTH 0 takes the length at run time; the others let the compiler unroll.

/// Even and odd taps are summed apart, because that suits the evaluation of a single footprint.
void FilterRange(const double* weights, CONST_COMPLEX_ROW pixels, int length, int count,
                 COMPLEX_ROW filtered, COMPLEX_ROW copy) {
  for (int x = 0; x < count; x += lanes) {
    LANES even_re{};
    LANES even_im{};
    LANES odd_re{};
    LANES odd_im{};
    const double* w = weights + x;
    const double* re = pixels.re + x;
    const double* im = pixels.im + x;
    for (int j = 0; j + 1 < length; j += 2) {
      const LANES even = Load(w + j * strip_columns);
      const LANES odd = Load(w + (j + 1) * strip_columns);
      even_re = MultiplyAdd(even, Load(re + j), even_re);
      even_im = MultiplyAdd(even, Load(im + j), even_im);
      odd_re = MultiplyAdd(odd, Load(re + j + 1), odd_re);
      odd_im = MultiplyAdd(odd, Load(im + j + 1), odd_im);
    }
    if (length % 2 != 0) {
      const LANES even = Load(w + (length - 1) * strip_columns);
      even_re = MultiplyAdd(even, Load(re + length - 1), even_re);
      even_im = MultiplyAdd(even, Load(im + length - 1), even_im);
    }
    Store(even_re + odd_re, filtered.re + x);
    Store(even_re + odd_re, copy.re + x);
    Store(even_im + odd_im, filtered.im + x);
    Store(even_im + odd_im, copy.im + x);
  }
}

/// With zeta = exp(-2 pi i u), w_k the weights and P_k the filtered lines,
///
///     sum over k of w_k P_k zeta^k = b_0 - b_1 / zeta,
///     b_k = w_k P_k + 2 cos(2 pi u) b_(k+1) - b_(k+2),  b_L = b_(L+1) = 0
///
/// (Goertzel's or Clenshaw's recurrence): the coefficient is real, and one sine and cosine serve
/// all taps. `ramp` is 1 / zeta.
template <int LENGTH>
void FilterAzimuth(const double* weights, CONST_COMPLEX_ROW filtered, int length,
                   const RAMP_ROWS& phasors, int count, COMPLEX_ROW sums) {
  const int taps = LENGTH > 0 ? LENGTH : length;
  for (int x = 0; x < count; x += lanes) {
    const LANES cosine = Load(phasors.ramp.re + x);
    const LANES sine = Load(phasors.ramp.im + x);
    const LANES twice = cosine + cosine;
    LANES b1_re{};
    LANES b1_im{};
    LANES b2_re{};
    LANES b2_im{};
#pragma GCC unroll 16
    for (int k = taps - 1; k >= 0; --k) {
      const LANES w = Load(weights + k * strip_columns + x);
      const LANES re = Load(filtered.re + k * strip_columns + x);
      const LANES im = Load(filtered.im + k * strip_columns + x);
      const LANES b_re = MultiplyAdd(twice, b1_re, MultiplyAdd(w, re, -b2_re));
      const LANES b_im = MultiplyAdd(twice, b1_im, MultiplyAdd(w, im, -b2_im));
      b2_re = b1_re;
      b2_im = b1_im;
      b1_re = b_re;
      b1_im = b_im;
    }
    const LANES s_re = MultiplyAdd(sine, b2_im, MultiplyAdd(-cosine, b2_re, b1_re));
    const LANES s_im = MultiplyAdd(-sine, b2_re, MultiplyAdd(-cosine, b2_im, b1_im));
    const LANES last_re = Load(phasors.last.re + x);
    const LANES last_im = Load(phasors.last.im + x);
    Store(MultiplyAdd(last_re, s_re, -(last_im * s_im)), sums.re + x);
    Store(MultiplyAdd(last_re, s_im, last_im * s_re), sums.im + x);
  }
}

/// The sum over k of w_k P_k exp(2 pi i phi_k) with phi_k quadratic in k, by Horner's rule:
///
///     S_(L-1) = w_(L-1) P_(L-1),  S_(k-1) = S_k r_k + w_(k-1) P_(k-1),
///     r_k = exp(2 pi i (phi_k - phi_(k-1))),  r_(k-1) = r_k * step
///
/// and at last S_0 exp(2 pi i phi_0). `first` is r_(L-1). Because |step| = 1, also
/// r_(k-1) = 2 Re(step) r_k - r_(k+1), which is cheaper, but loses digits with the square of k.
template <int LENGTH>
void FilterAzimuthWithRate(const double* weights, CONST_COMPLEX_ROW filtered, int length,
                           const RATE_ROWS& phasors, int count, COMPLEX_ROW sums) {
  const int taps = LENGTH > 0 ? LENGTH : length;
  for (int x = 0; x < count; x += lanes) {
    const LANES step_re = Load(phasors.step.re + x);
    const LANES step_im = Load(phasors.step.im + x);
    const LANES twice = step_re + step_re;
    LANES r_re = Load(phasors.first.re + x);
    LANES r_im = Load(phasors.first.im + x);
    LANES next_re = MultiplyAdd(r_re, step_re, -(r_im * step_im));
    LANES next_im = MultiplyAdd(r_re, step_im, r_im * step_re);
    const double* w = weights + x;
    const double* re = filtered.re + x;
    const double* im = filtered.im + x;
    LANES s_re = Load(w + (taps - 1) * strip_columns) * Load(re + (taps - 1) * strip_columns);
    LANES s_im = Load(w + (taps - 1) * strip_columns) * Load(im + (taps - 1) * strip_columns);
#pragma GCC unroll 16
    for (int k = taps - 2; k >= 0; --k) {
      const LANES weight = Load(w + k * strip_columns);
      const LANES term_re = weight * Load(re + k * strip_columns);
      const LANES term_im = weight * Load(im + k * strip_columns);
      const LANES turned_re = MultiplyAdd(s_re, r_re, MultiplyAdd(-s_im, r_im, term_re));
      s_im = MultiplyAdd(s_re, r_im, MultiplyAdd(s_im, r_re, term_im));
      s_re = turned_re;
      const LANES after_re = LENGTH > 0 ? MultiplyAdd(twice, next_re, -r_re)
                                        : MultiplyAdd(next_re, step_re, -(next_im * step_im));
      const LANES after_im = LENGTH > 0 ? MultiplyAdd(twice, next_im, -r_im)
                                        : MultiplyAdd(next_re, step_im, next_im * step_re);
      r_re = next_re;
      r_im = next_im;
      next_re = after_re;
      next_im = after_im;
    }
    const LANES last_re = Load(phasors.last.re + x);
    const LANES last_im = Load(phasors.last.im + x);
    Store(MultiplyAdd(last_re, s_re, -(last_im * s_im)), sums.re + x);
    Store(MultiplyAdd(last_re, s_im, last_im * s_re), sums.im + x);
  }
}

template <int N>
struct TAPS {
  static constexpr int count = N;
};

template <class CHOOSE>
auto ForLength(int length, CHOOSE choose) {
  switch (length) {
    case 6:
      return choose(TAPS<6>());
    case 8:
      return choose(TAPS<8>());
    case 12:
      return choose(TAPS<12>());
    case 16:
      return choose(TAPS<16>());
    default:
      return choose(TAPS<0>());
  }
}

// Masks

void FilterMask(const unsigned char* __restrict mask, int length, int count,
                unsigned char* __restrict valid) {
  for (int x = 0; x < count; ++x) {
    valid[x] = 1;
  }
  for (int j = 0; j < length; ++j) {
    for (int x = 0; x < count; ++x) {
      valid[x] &= static_cast<unsigned char>(mask[x + j] != 0);
    }
  }
}

void CombineMasks(const unsigned char* __restrict masks, int length, int count,
                  unsigned char* __restrict valid) {
  for (int x = 0; x < count; ++x) {
    valid[x] = 1;
  }
  for (int k = 0; k < length; ++k) {
    for (int x = 0; x < count; ++x) {
      valid[x] &= masks[k * strip_columns + x];
    }
  }
}

// Pixels

using INT_16 = COMPLEX<std::int16_t>;
using BINARY_16 = COMPLEX<std::uint16_t>;

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

/// The components of two pixels as integers of 32 bits.
template <class PIXEL>
__m128i Halves(const PIXEL* pixels) {
  const __m128i halves = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(pixels));
#ifdef __SSE4_1__
  return _mm_cvtepi16_epi32(halves);
#else
  return _mm_srai_epi32(_mm_unpacklo_epi16(halves, halves), 16);
#endif
}

COMPLEX_PAIR DecodePair(const INT_16* pixels) {
  return ToDouble(Halves(pixels));
}

/// The same steps as for a single binary16 number.
COMPLEX_PAIR DecodePair(const BINARY_16* pixels) {
  const __m128i half = Halves(pixels);
  const __m128i moved = _mm_and_si128(_mm_slli_epi32(half, 13), _mm_set1_epi32(moved_mask));
  const __m128i special =
      _mm_cmpgt_epi32(_mm_and_si128(half, _mm_set1_epi32(0x7FFF)), _mm_set1_epi32(largest_finite));
  const __m128i bits = _mm_or_si128(_mm_add_epi32(moved, _mm_set1_epi32(bias_step)), special);
  const __m128i is_zero = _mm_cmpeq_epi32(half, _mm_setzero_si128());
  return ToDouble(_mm_castsi128_ps(_mm_andnot_si128(is_zero, bits)));
}

COMPLEX_PAIR DecodeSingle(const INT_16* pixel) {
  const std::uint32_t word = Word(pixel);
  return PairOf(RealHalf(word), ImaginaryHalf(word));
}

COMPLEX_PAIR DecodeSingle(const BINARY_16* pixel) {
  const std::uint32_t word = Word(pixel);
  return PairOf(DecodeBinary16(RealHalf(word)), DecodeBinary16(ImaginaryHalf(word)));
}

/// A pair holds an even and an odd tap: the sums of `FilterRange`, in its order.
template <class PIXEL, int LENGTH>
void FilterFootprint(const PIXEL* const* lines, std::int64_t sample, const double* weights,
                     int length, int line_count, COMPLEX_ROW filtered) {
  const int taps = LENGTH > 0 ? LENGTH : length;
  COMPLEX_PAIR twice_each[(LENGTH > 0 ? LENGTH : longest_kernel) / 2];
  for (int j = 0; j + 1 < taps; j += 2) {
    twice_each[j / 2] = TwiceEach(weights + j);
  }
  for (int k = 0; k < line_count; ++k) {
    const PIXEL* pixels = lines[k] + sample;
    COMPLEX_PAIR sum = ZeroPair();
#pragma GCC unroll 8
    for (int j = 0; j + 1 < taps; j += 2) {
      sum = MultiplyAdd(twice_each[j / 2], DecodePair(pixels + j), sum);
    }
    if (taps % 2 != 0) {
      sum = MultiplyAdd(PairOf(weights[taps - 1], weights[taps - 1]),
                        DecodeSingle(pixels + taps - 1), sum);
    }
    const __m128d total = Sum(sum);
    filtered.re[k * strip_columns] = total[0];
    filtered.im[k * strip_columns] = total[1];
  }
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
bool EncodeRow(CONST_COMPLEX_ROW values, int count, PIXEL* encoded, ENCODE encode) {
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

bool EncodeRowInt16(CONST_COMPLEX_ROW values, int count, INT_16* encoded) {
  return EncodeRow(values, count, encoded, EncodeInt16);
}
bool EncodeRowBinary16(CONST_COMPLEX_ROW values, int count, BINARY_16* encoded) {
  return EncodeRow(values, count, encoded, EncodeBinary16);
}

constexpr ROW_FUNCTIONS all_row_functions = {
    .matrix_positions = MatrixPositions,
    .polynomial_positions = PolynomialPositions,
    .find_unsteady = FindUnsteady,
    .centroid = Centroid,
    .ramp_turns = RampTurns,
    .rate_turns = RateTurns,
    .sine_cosine = SineCosine,
    .close_sine_cosine = CloseSineCosine,
    .filter_range = FilterRange,
    .azimuth_filter =
        [](int length) {
          return ForLength(length,
                           [](auto taps) -> AZIMUTH_FILTER { return FilterAzimuth<taps.count>; });
        },
    .rate_azimuth_filter =
        [](int length) {
          return ForLength(length, [](auto taps) -> RATE_AZIMUTH_FILTER {
            return FilterAzimuthWithRate<taps.count>;
          });
        },
    .filter_mask = FilterMask,
    .combine_masks = CombineMasks,
    .int_16 = {.decode = DecodeRow,
               .footprint_filter =
                   [](int length) {
                     return ForLength(length, [](auto taps) -> FOOTPRINT_FILTER<INT_16> {
                       return FilterFootprint<INT_16, taps.count>;
                     });
                   },
               .encode = EncodeRowInt16},
    .binary_16 = {.decode = DecodeRow,
                  .footprint_filter =
                      [](int length) {
                        return ForLength(length, [](auto taps) -> FOOTPRINT_FILTER<BINARY_16> {
                          return FilterFootprint<BINARY_16, taps.count>;
                        });
                      },
                  .encode = EncodeRowBinary16},
};

// NOLINTEND(bugprone-implicit-widening-of-multiplication-result)

}  // namespace
