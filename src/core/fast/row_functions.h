#pragma once

#include <cstddef>
#include <cstdint>

#include "base/complex.h"
#include "core/pixel_codec.h"

/// The fast core works on strips of columns. Everything that it keeps for a column lies in arrays
/// of this many doubles; two-dimensional ones have one such row a tap.
inline constexpr int strip_columns = 64;

/// Columns are worked on in groups of this many. Column counts handed to the functions below are
/// multiples of it, except where they say otherwise.
inline constexpr int group_columns = 8;

/// Shorter and longer kernels are left to the plain core.
inline constexpr int shortest_kernel = 2;
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

/// Positions that are computed lie between these, all excluded.
struct POSITION_LIMITS {
  double rg_above;
  double rg_below;
  double az_above;
  double az_below;
};

/// What the columns of a strip read, in whole numbers.
struct TAP_ROWS {
  double* sample;        ///< slave sample at or before the position
  double* line_shift;    ///< likewise the slave line, minus the output line
  double* range_step;    ///< fraction of a sample in sub-pixel steps: 0 up to and with their number
  double* azimuth_step;  ///< likewise the fraction of a line
  double* fa;            ///< that fraction itself
};

/// What columns have there that are not computed, but for `fa`, which is any value. No sample is
/// this, nor has it before it.
inline constexpr double no_tap = -2.0;

/// Sets of a strip's columns: bit x for column x.
struct TAP_CHANGES {
  std::uint64_t computed;
  /// Read the sample behind that of the column before, of the same line. Only if any have shifted.
  std::uint64_t joined;
  std::uint64_t shifted;  ///< have another sample or line shift than before
  std::uint64_t range;    ///< have another range step than before
  std::uint64_t azimuth;  ///< have another azimuth step than before
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

/// Consecutive slave lines in a ring of rows: line i lies in row (first + i) & row_mask.
template <class T>
struct RING_LINES {
  const T* rows;  ///< row 0, at the sample of the first tap of the first column
  std::ptrdiff_t stride;
  unsigned row_mask;
  unsigned first;

  const T* Line(int i) const {
    return rows +
           static_cast<std::ptrdiff_t>((first + static_cast<unsigned>(i)) & row_mask) * stride;
  }
};

/// The sums along range of the lines of a footprint, likewise in a ring: a row of `strip_columns`
/// real parts, then as many imaginary ones.
struct SUM_LINES {
  double* rows;
  unsigned row_mask;
  unsigned first;

  COMPLEX_ROW Line(int i) const {
    constexpr std::ptrdiff_t row_length = 2 * static_cast<std::ptrdiff_t>(strip_columns);
    const unsigned row = (first + static_cast<unsigned>(i)) & row_mask;
    double* const re = rows + row_length * static_cast<std::ptrdiff_t>(row);
    return {re, re + strip_columns};
  }
};

/// sums[x] = sum over j of weights[j][x] pixels[x + j], j = 0 .. length - 1, for those of `count`
/// columns that `columns` names: bit x for column x. `decoded_im` is how far the imaginary parts
/// lie behind the real ones. Up to 7 samples behind the last ones are read too, and can have any
/// value.
using RANGE_FILTER = void (*)(const double* weights, const double* pixels,
                              std::ptrdiff_t decoded_im, int length, int count,
                              std::uint64_t columns, COMPLEX_ROW sums);

/// The same for all lines of the footprints of a group, with the kernel row of each column. Behind
/// its weights a row has others, of any value, up to a multiple of 8.
using GROUP_FILTER = void (*)(const double* const* kernel_rows, const RING_LINES<double>& decoded,
                              std::ptrdiff_t decoded_im, int length, unsigned columns,
                              const SUM_LINES& sums);

/// sums[x] = sum over k of weights[k][x] filtered[k][x], turned tap by tap.
using AZIMUTH_FILTER = void (*)(const double* weights, const SUM_LINES& filtered, int length,
                                const RAMP_ROWS& phasors, int count, COMPLEX_ROW sums);
using RATE_AZIMUTH_FILTER = void (*)(const double* weights, const SUM_LINES& filtered, int length,
                                     const RATE_ROWS& phasors, int count, COMPLEX_ROW sums);

/// What `RANGE_FILTER` makes of a single column, to the last bit, from pixels that are not decoded
/// yet: `lines` are rows of the slave, and `sample` that of the first tap.
template <class PIXEL>
using FOOTPRINT_FILTER = void (*)(const PIXEL* const* lines, std::int64_t sample,
                                  const double* weights, int length, int line_count,
                                  const SUM_LINES& sums);

/// What is to be known of a row that has been encoded.
struct ENCODED_ROW {
  /// False when a component is no number or has a magnitude of 2^30 or more; what was encoded for
  /// such components is then of no use.
  bool is_complete;
  int at_ends;  ///< components that stand at an end of their type's range
};

/// The functions that depend on the kind of pixels.
template <class PIXEL>
struct PIXEL_FUNCTIONS {
  /// Converts any number of pixels.
  void (*decode)(const PIXEL* pixels, int count, COMPLEX_ROW decoded);
  FOOTPRINT_FILTER<PIXEL> (*footprint_filter)(int length);
  ENCODED_ROW (*encode)(CONST_COMPLEX_ROW values, int count, PIXEL* encoded);
};

template <class LIST>
struct FUNCTIONS_OF_ALL_PIXELS;

/// Those of the pixels of every codec in a list.
template <class... CODECS>
struct FUNCTIONS_OF_ALL_PIXELS<CODEC_LIST<CODECS...>> : PIXEL_FUNCTIONS<typename CODECS::PIXEL>... {
  template <class PIXEL>
  const PIXEL_FUNCTIONS<PIXEL>& Of() const {
    return *this;
  }
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
  /// Where the taps of all columns of a strip lie, and what of it differs from what `taps` held.
  TAP_CHANGES(*locate_taps)
  (const double* rg, const double* az, double line, const POSITION_LIMITS& limits,
   double subpix_count, const TAP_ROWS& taps);
  /// to[j][i] = kernel_rows[i][j] for the columns of a group and j = 0 .. length - 1.
  void (*transpose_rows)(const double* const* kernel_rows, int length, double* to);

  /// range_time[x] = start + sample[x] / rate
  void (*range_times)(const double* sample, double start, double rate, int count,
                      double* range_time);
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

  RANGE_FILTER (*range_filter)(int length);
  GROUP_FILTER (*group_filter)(int length);
  AZIMUTH_FILTER (*azimuth_filter)(int length);
  RATE_AZIMUTH_FILTER (*rate_azimuth_filter)(int length);

  /// valid[x] = 1 when none of mask[x .. x + length - 1] is 0, else 0; for any count.
  void (*filter_mask)(const unsigned char* mask, int length, int count, unsigned char* valid);
  /// valid[x] = 1 when lines k = 0 .. length - 1 of `masks` are 1 at x, else 0; for any count.
  void (*combine_masks)(const RING_LINES<unsigned char>& masks, int length, int count,
                        unsigned char* valid);

  /// Asks for all cache lines of [begin, end) before they are written.
  void (*prefetch_written)(const void* begin, const void* end);

  FUNCTIONS_OF_ALL_PIXELS<PIXEL_CODECS> pixels;
};
