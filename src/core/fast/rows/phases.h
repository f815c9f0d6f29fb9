#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

#include "core/fast/row_functions.h"
#include "core/fast/rows/lanes.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

void RangeTimes(const double* sample, double start, double rate, int count, double* range_time) {
  for (int x = 0; x < count; x += lanes) {
    Store(start + Load(sample + x) / rate, range_time + x);
  }
}

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
    const LANE_FLAGS is_larger =
        Less(sum, zero - polynomial.limit) | Less(zero + polynomial.limit, sum);
    Store(Choose(is_larger, nan, sum), value + x);
  }
}

/// What is left of turns without whole ones, which is exact.
inline LANES WithoutWhole(LANES turns) {
  return turns - ((turns + to_integer) - to_integer);
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

/// Reduces by half turns, which is exact, and evaluates polynomials in the square of what is left,
/// at most a quarter turn: interpolations at Chebyshev nodes, with errors below 2e-16 for
/// sin(2 pi r) / r and 1e-17 for cos(2 pi r).
inline COMPLEX_LANES Phasor(LANES turns) {
  const LANES zero{};
  const LANES rounded = turns * 2.0 + to_integer;
  const LANES r = turns - (rounded - to_integer) * 0.5;
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
    close &= Less(zero - limit, rest) & Less(rest, zero + limit);
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
  return MaskOf(close) == all_lanes;
}

}  // namespace
