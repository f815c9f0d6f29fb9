#pragma once

#include <cstdint>

#include "base/complex.h"

/// The fast core works on strips of columns. Everything that it keeps for a column lies in arrays
/// of this many doubles; two-dimensional ones have one such row a tap.
inline constexpr int strip_columns = 64;

/// Columns are looked at in groups of this many. Column counts handed to the functions below are
/// multiples of it, except where they say otherwise.
inline constexpr int group_columns = 8;

/// Longer kernels are left to the plain core.
inline constexpr int longest_kernel = 128;

/// Complex values of a run of columns, apart.
struct COMPLEX_ROW {
  double* re;
  double* im;
};
struct CONST_COMPLEX_ROW {
  const double* re;
  const double* im;
};

/// What the bilinear mapping of one strip needs: for every column its master sample, and both
/// shifts interpolated along range at the grid lines before and after the output line.
struct MATRIX_COLUMNS {
  const double* sample;
  const double* rg_before;
  const double* rg_after;
  const double* az_before;
  const double* az_after;
};

/// The terms of one mapping polynomial c0 + c1 y + c2 x + c3 x y + c4 y^2 + c5 x^2 that belong to
/// a column and those that belong to a line.
struct POLYNOMIAL_COLUMNS {
  const double* c2_x;
  const double* c3_x;
  const double* c5_x_x;
};
struct POLYNOMIAL_LINE {
  double c0_c1_y;
  double c4_y_y;
};

/// Where the positions of a column may move without changing what it reads: the slave's range
/// position inside [rg_first, rg_end), and the azimuth position minus (line + line_shift) inside
/// [fa_first, fa_end).
struct COLUMN_INTERVALS {
  const double* rg_first;
  const double* rg_end;
  const double* line_shift;
  const double* fa_first;
  const double* fa_end;
};

/// Azimuth positions that are computed lie between these, both excluded.
struct AZIMUTH_LIMITS {
  double above;
  double below;
};

/// The Doppler centroid as a polynomial in range time for one slave line.
struct RANGE_POLYNOMIAL {
  double reference_time;
  const double* coefficients;  ///< lowest degree first
  int count;
  double scale;
  double limit;  ///< of magnitudes: what is larger, or no number, becomes NaN
};

/// Where the phases of a quadratic centroid go, in turns.
struct RATE_TURNS {
  double* first;
  double* step;
  double* last;
};

/// The phasors that turn the taps of the columns of a strip: tap k by last[x] / ramp[x]^k.
struct RAMP_ROWS {
  CONST_COMPLEX_ROW ramp;
  CONST_COMPLEX_ROW last;
};

/// With a phase that is quadratic in k: tap 0 is turned by last[x], and the factor from tap k - 1
/// to tap k is first[x] for the last tap, and step[x] times that of tap k + 1 for the others.
struct RATE_ROWS {
  CONST_COMPLEX_ROW first;
  CONST_COMPLEX_ROW step;
  CONST_COMPLEX_ROW last;
};

/// sums[x] = sum over k of weights[k][x] filtered[k][x], turned tap by tap.
using AZIMUTH_FILTER = void (*)(const double* weights, CONST_COMPLEX_ROW filtered, int length,
                                const RAMP_ROWS& phasors, int count, COMPLEX_ROW sums);
using RATE_AZIMUTH_FILTER = void (*)(const double* weights, CONST_COMPLEX_ROW filtered, int length,
                                     const RATE_ROWS& phasors, int count, COMPLEX_ROW sums);

/// filtered[k][0] = sum over j of weights[j] lines[k][sample + j] for `line_count` lines k: what
/// `filter_range` makes of a single column, to the last bit. Rows are `strip_columns` apart.
template <class PIXEL>
using FOOTPRINT_FILTER = void (*)(const PIXEL* const* lines, std::int64_t sample,
                                  const double* weights, int length, int line_count,
                                  COMPLEX_ROW filtered);

/// The functions that depend on the kind of pixels.
template <class PIXEL>
struct PIXEL_FUNCTIONS {
  /// Converts any number of pixels.
  void (*decode)(const PIXEL* pixels, int count, COMPLEX_ROW decoded);
  FOOTPRINT_FILTER<PIXEL> (*footprint_filter)(int length);
  /// Encodes a row. Returns false when a component is no number or has a magnitude of 2^30 or
  /// more; what was encoded for such components is then of no use.
  bool (*encode)(CONST_COMPLEX_ROW values, int count, PIXEL* encoded);
};

/// The parts of the fast core that work on a run of columns at once, compiled for one level of
/// the processor. None of them allocates, fails, or touches more than it is given.
struct ROW_FUNCTIONS {
  /// Positions of the columns of a line; `line_fraction` is its place between the grid lines.
  void (*matrix_positions)(const MATRIX_COLUMNS& columns, double line, double line_fraction,
                           int count, double* rg, double* az);
  /// Positions along one axis: the shift of the polynomial plus the column's origin.
  void (*polynomial_positions)(const POLYNOMIAL_COLUMNS& columns, const POLYNOMIAL_LINE& terms,
                               double line, const double* origin, int count, double* position);
  /// fa = az - (line + line_shift) for all columns of a strip. Returns the columns that leave one
  /// of their intervals: bit x for column x.
  std::uint64_t (*find_unsteady)(const COLUMN_INTERVALS& intervals, const AZIMUTH_LIMITS& limits,
                                 double line, const double* rg, const double* az, double* fa);

  /// scale * sum over k of c_k (range_time - reference_time)^k by Horner's rule, never fused.
  void (*centroid)(const RANGE_POLYNOMIAL& polynomial, const double* range_time, int count,
                   double* value);
  /// last = slope * (fa + offset), but for whole turns.
  void (*ramp_turns)(const double* slope, const double* fa, double offset, int count, double* last);
  /// The turns of `RATE_ROWS`, but for whole ones, for the phase
  /// slope * (fa - t) + rate * (fa^2 - t^2) of tap k at t = k - offset.
  void (*rate_turns)(const double* slope, const double* rate, const double* fa, double offset,
                     int length, int count, const RATE_TURNS& turns);
  /// cos and sin of 2 pi * turns, to about 4e-16.
  void (*sine_cosine)(const double* turns, int count, COMPLEX_ROW phasor);
  /// The same for all columns of a strip, in less time, if no turns differ from those of the middle
  /// column by 2^-10 or more. Otherwise returns false, and the phasors are of no use.
  bool (*close_sine_cosine)(const double* turns, COMPLEX_ROW phasor);

  /// filtered[x] = sum over j of weights[j][x] pixels[x + j], j = 0 .. length - 1; and a copy.
  void (*filter_range)(const double* weights, CONST_COMPLEX_ROW pixels, int length, int count,
                       COMPLEX_ROW filtered, COMPLEX_ROW copy);
  AZIMUTH_FILTER (*azimuth_filter)(int length);
  RATE_AZIMUTH_FILTER (*rate_azimuth_filter)(int length);

  /// valid[x] = 1 when none of mask[x .. x + length - 1] is 0, else 0.
  void (*filter_mask)(const unsigned char* mask, int length, int count, unsigned char* valid);
  /// valid[x] = 1 when masks[k][x] is 1 for k = 0 .. length - 1, else 0.
  void (*combine_masks)(const unsigned char* masks, int length, int count, unsigned char* valid);

  PIXEL_FUNCTIONS<COMPLEX<std::int16_t>> int_16;
  PIXEL_FUNCTIONS<COMPLEX<std::uint16_t>> binary_16;
};
