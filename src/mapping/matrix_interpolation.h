#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "base/unaligned.h"

/// Interpolation between the nodes of a two-dimensional matrix.
class BASE_MATRIX_INTERPOLATION {
 public:
  virtual ~BASE_MATRIX_INTERPOLATION() = default;

  /// The value at a position in grid units: line first, then column. This one must never run: it
  /// throws ERROR_NOT_IMPLEMENTED.
  virtual double GetValue(double azimuth, double range) const;

 protected:
  BASE_MATRIX_INTERPOLATION() = default;
  BASE_MATRIX_INTERPOLATION(const BASE_MATRIX_INTERPOLATION&) = default;
  BASE_MATRIX_INTERPOLATION& operator=(const BASE_MATRIX_INTERPOLATION&) = default;
};

/// Interpolation on the rows of a matrix that somebody else owns, such as a mapped raster:
/// rows[line][column], columns along range, lines along azimuth.
///
/// The degree tells the number of nodes along each axis: 1 takes the nearest node, 2 is bilinear,
/// 4 and 6 weigh their nodes as the Lagrange polynomial through them, with both fractions of the
/// position quantised to 1/128 from a table. Set up once, then only read: evaluations may run in
/// many threads at once. They neither allocate nor copy.
template <class T>
class MATRIX_INTERPOLATION : public BASE_MATRIX_INTERPOLATION {
 public:
  static constexpr unsigned bilinear = 2;

  /// Sets up, again on an object that is set up already, and prints an overview to the log. The
  /// rows must outlive the use of the object. A degree other than 1, 2, 4 and 6 makes evaluations
  /// throw.
  void Init(const T* const* rows, unsigned rg_size, unsigned az_size, unsigned degree = bilinear);

  /// The value at line y = `azimuth` and column x = `range`, 0 outside the grid. Inside is
  ///
  ///     degree 1:       -0.5 <= x < rg_size - 0.5,
  ///     degree 2:          0 <= x < rg_size - 1,
  ///     degrees 4, 6:  h - 1 <= x < rg_size - h,  h = degree / 2,
  ///
  /// likewise y; NaN and infinity are outside. The last column and line of degree 2 are never
  /// interpolated towards. Throws ERROR_UNHANDLED_CASE for any other degree, and before `Init`.
  double GetValue(double azimuth, double range) const override {
    switch (degree_) {
      case 1:
        return Nearest(azimuth, range);
      case bilinear:
        return Bilinear(azimuth, range);
      case 4:
      case 6:
        return Weighted(azimuth, range);
      default:
        RefuseDegree();
    }
  }

  const T* const* Rows() const noexcept { return rows_; }
  unsigned RgSize() const noexcept { return rg_size_; }
  unsigned AzSize() const noexcept { return az_size_; }
  unsigned Degree() const noexcept { return degree_; }

 private:
  /// Number of steps to which the fraction of a position is quantised for degrees 4 and 6.
  static constexpr unsigned fraction_steps = 128;

  /// Positive comparisons only, so that NaN fails. They come before any conversion to an integer.
  static bool IsWithin(double position, double first, double end) {
    return position >= first && position < end;
  }

  /// M[trunc(y + 0.5)][trunc(x + 0.5)]: halves round up.
  double Nearest(double y, double x) const {
    if (!IsWithin(x, -0.5, rg_size_ - 0.5) || !IsWithin(y, -0.5, az_size_ - 0.5)) {
      return 0.0;
    }
    return static_cast<double>(
        LoadUnaligned(rows_[NearestNode(y, az_size_)] + NearestNode(x, rg_size_)));
  }

  static unsigned NearestNode(double position, unsigned size) {
    const double rounded = position + 0.5;
    // For the largest double below 0.5 that is 1, beyond the end of a single node.
    return std::min(static_cast<unsigned>(rounded), size - 1);
  }

  /// With i = trunc(x), j = trunc(y), a = x - i, b = y - j, in exactly this order
  ///
  ///     (1 - b) (M[j][i+1] a + M[j][i] (1 - a)) + (M[j+1][i+1] a + M[j+1][i] (1 - a)) b.
  double Bilinear(double y, double x) const {
    if (!IsWithin(x, 0.0, rg_size_ - 1.0) || !IsWithin(y, 0.0, az_size_ - 1.0)) {
      return 0.0;
    }
    const auto i = static_cast<std::size_t>(x);
    const auto j = static_cast<std::size_t>(y);
    const double a = x - static_cast<double>(i);
    const double b = y - static_cast<double>(j);
    const T* upper = rows_[j] + i;
    const T* lower = rows_[j + 1] + i;
    return (1.0 - b) * (LoadUnaligned(upper + 1) * a + LoadUnaligned(upper) * (1.0 - a)) +
           (LoadUnaligned(lower + 1) * a + LoadUnaligned(lower) * (1.0 - a)) * b;
  }

  /// The sum of W[r][s] M[j - h + 1 + r][i - h + 1 + s] over r from degree - 1 down to 0 and s from
  /// 0 to degree - 1, accumulated in this order.
  double Weighted(double y, double x) const {
    const double h = support_offset_;
    if (!IsWithin(x, h - 1.0, rg_size_ - h) || !IsWithin(y, h - 1.0, az_size_ - h)) {
      return 0.0;
    }
    const auto i = static_cast<std::size_t>(x);
    const auto j = static_cast<std::size_t>(y);
    const float* weights =
        Cell(static_cast<std::size_t>((y - static_cast<double>(j)) * fraction_steps),
             static_cast<std::size_t>((x - static_cast<double>(i)) * fraction_steps));
    const std::size_t first_offset = std::size_t{support_offset_} - 1;
    double sum = 0.0;
    for (std::size_t r = degree_; r-- > 0;) {
      const T* nodes = rows_[j - first_offset + r] + (i - first_offset);
      for (std::size_t s = 0; s < degree_; ++s) {
        sum += static_cast<double>(weights[r * degree_ + s]) *
               static_cast<double>(LoadUnaligned(nodes + s));
      }
    }
    return sum;
  }

  /// The weights of one pair of quantised fractions: degree rows of degree weights.
  const float* Cell(std::size_t azimuth_step, std::size_t range_step) const {
    return weights_.data() + (azimuth_step * fraction_steps + range_step) * degree_ * degree_;
  }

  void BuildWeights();
  void PrintOverview() const;
  [[noreturn]] void RefuseDegree() const;

  const T* const* rows_ = nullptr;
  std::vector<float> weights_;  ///< of degrees 4 and 6: all cells, azimuth fraction first
  unsigned rg_size_ = 0;
  unsigned az_size_ = 0;
  unsigned degree_ = 0;
  /// The nodes of degrees 4 and 6 start this number minus 1 before the node at or before the point.
  unsigned support_offset_ = 0;
};

extern template class MATRIX_INTERPOLATION<float>;
