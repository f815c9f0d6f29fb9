#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

#include "core/fast/row_functions.h"
#include "core/fast/rows/lanes.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

/// With zeta = exp(-2 pi i u), w_k the weights and P_k the filtered lines,
///
///     sum over k of w_k P_k zeta^k = b_0 - b_1 / zeta,
///     b_k = w_k P_k + 2 cos(2 pi u) b_(k+1) - b_(k+2),  b_L = b_(L+1) = 0
///
/// (Goertzel's or Clenshaw's recurrence): the coefficient is real, and one sine and cosine serve
/// all taps. `ramp` is 1 / zeta.
template <int LENGTH>
void FilterAzimuth(const double* weights, const SUM_LINES& filtered, int length,
                   const RAMP_ROWS& phasors, int count, COMPLEX_ROW sums) {
  const int taps = LENGTH > 0 ? LENGTH : length;
  for (int x = 0; x < count; x += lanes) {
    const LANES cosine = Load(phasors.ramp.re + x);
    const LANES sine = Load(phasors.ramp.im + x);
    const LANES twice = cosine + cosine;
    const LANES first_weight = Load(weights + std::ptrdiff_t{taps - 1} * strip_columns + x);
    LANES b1_re = first_weight * Load(filtered.Line(taps - 1).re + x);
    LANES b1_im = first_weight * Load(filtered.Line(taps - 1).im + x);
    LANES b2_re{};
    LANES b2_im{};
#pragma GCC unroll 16
    for (int k = taps - 2; k >= 0; --k) {
      const LANES w = Load(weights + std::ptrdiff_t{k} * strip_columns + x);
      const LANES re = Load(filtered.Line(k).re + x);
      const LANES im = Load(filtered.Line(k).im + x);
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
void FilterAzimuthWithRate(const double* weights, const SUM_LINES& filtered, int length,
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
    const LANES first_weight = Load(w + std::ptrdiff_t{taps - 1} * strip_columns);
    LANES s_re = first_weight * Load(filtered.Line(taps - 1).re + x);
    LANES s_im = first_weight * Load(filtered.Line(taps - 1).im + x);
#pragma GCC unroll 16
    for (int k = taps - 2; k >= 0; --k) {
      const LANES weight = Load(w + std::ptrdiff_t{k} * strip_columns);
      const LANES term_re = weight * Load(filtered.Line(k).re + x);
      const LANES term_im = weight * Load(filtered.Line(k).im + x);
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

}  // namespace
