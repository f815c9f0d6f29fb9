#include "core/fast/position_rows.h"

#include <algorithm>
#include <limits>
#include <typeinfo>
#include <utility>

#include "base/unaligned.h"
#include "core/fast/prefetch.h"
#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// Asks the mapping for every pixel.
class PIXEL_POSITIONS : public POSITION_ROWS {
 public:
  explicit PIXEL_POSITIONS(const MAPPING_BASE& mapping) : mapping_(mapping) {}

  void BeginStrip(int first_column, int count) override {
    first_column_ = first_column;
    count_ = count;
  }

  void Fill(unsigned line, double* rg, double* az) override {
    for (int x = 0; x < count_; ++x) {
      rg[x] = mapping_.GetSlaveRange(first_column_ + x, line);
      az[x] = mapping_.GetSlaveAzimuth(first_column_ + x, line);
    }
    std::fill(rg + count_, rg + strip_columns, nan);
    std::fill(az + count_, az + strip_columns, nan);
  }

 private:
  const MAPPING_BASE& mapping_;
  int first_column_ = 0;
  int count_ = 0;
};

/// Bilinear matrices. Along range the shifts are interpolated once for every line of the grid:
///
///     shift(x, y) = (1 - b) before(x) + after(x) b,  before(x) = M[j][i+1] a + M[j][i] (1 - a)
///
/// with node i and fraction a of the column, grid line j and fraction b of the line, and after(x)
/// likewise on grid line j + 1. Outside the grid the shift is 0.
class MATRIX_POSITIONS : public POSITION_ROWS {
 public:
  MATRIX_POSITIONS(const MAPPING_MATRIX& mapping, const ROW_FUNCTIONS& functions)
      : functions_(functions),
        rg_(mapping.RgInterpolation()),
        az_(mapping.AzInterpolation()),
        rg_subsampling_(mapping.RgSubsampling()),
        az_subsampling_(mapping.AzSubsampling()) {}

  void BeginStrip(int first_column, int count) override {
    inside_count_ = 0;
    held_grid_line_ = nothing_held;
    for (int x = 0; x < strip_columns; ++x) {
      sample_[x] = x < count ? first_column + x : nan;
      const double u = (first_column + x) / static_cast<double>(rg_subsampling_);
      if (x < count && u < rg_.RgSize() - 1.0) {
        node_[x] = static_cast<std::size_t>(u);
        fraction_[x] = u - static_cast<double>(node_[x]);
        inside_count_ = x + 1;
      }
    }
  }

  void Fill(unsigned line, double* rg, double* az) override {
    const double v = line / static_cast<double>(az_subsampling_);
    const bool is_inside = v >= 0.0 && v < rg_.AzSize() - 1.0;
    const std::int64_t grid_line = is_inside ? static_cast<std::int64_t>(v) : outside;
    if (grid_line != held_grid_line_) {
      HoldGridLine(grid_line);
    }
    const double line_fraction = is_inside ? v - static_cast<double>(grid_line) : 0.0;
    functions_.matrix_positions({sample_, rg_before_, rg_after_, az_before_, az_after_}, line,
                                line_fraction, strip_columns, rg, az);
  }

 private:
  static constexpr std::int64_t nothing_held = -2;
  static constexpr std::int64_t outside = -1;

  /// Going down, the grid line after the last ones becomes the one before.
  void HoldGridLine(std::int64_t grid_line) {
    if (grid_line != outside && held_grid_line_ >= 0 && grid_line == held_grid_line_ + 1) {
      std::swap(rg_before_, rg_after_);
      std::swap(az_before_, az_after_);
    } else {
      FillShifts(rg_, grid_line, rg_before_);
      FillShifts(az_, grid_line, az_before_);
    }
    const std::int64_t next = grid_line == outside ? outside : grid_line + 1;
    FillShifts(rg_, next, rg_after_);
    FillShifts(az_, next, az_after_);
    PrefetchGridLine(rg_, next + 1);
    PrefetchGridLine(az_, next + 1);
    held_grid_line_ = grid_line;
  }

  void PrefetchGridLine(const MATRIX_INTERPOLATION<float>& matrix, std::int64_t grid_line) const {
    if (inside_count_ > 0 && grid_line < matrix.AzSize()) {
      const float* nodes = matrix.Rows()[grid_line];
      Prefetch(nodes + node_[0], nodes + node_[inside_count_ - 1] + 2);
    }
  }

  void FillShifts(const MATRIX_INTERPOLATION<float>& matrix, std::int64_t grid_line,
                  double* shifts) const {
    const int count = grid_line == outside ? 0 : inside_count_;
    const float* nodes = grid_line == outside ? nullptr : matrix.Rows()[grid_line];
    for (int x = 0; x < count; ++x) {
      const float* node = nodes + node_[x];
      shifts[x] =
          LoadUnaligned(node + 1) * fraction_[x] + LoadUnaligned(node) * (1.0 - fraction_[x]);
    }
    std::fill(shifts + count, shifts + strip_columns, 0.0);
  }

  const ROW_FUNCTIONS& functions_;
  const MATRIX_INTERPOLATION<float>& rg_;
  const MATRIX_INTERPOLATION<float>& az_;
  const int rg_subsampling_;
  const int az_subsampling_;
  std::int64_t held_grid_line_ = nothing_held;
  int inside_count_ = 0;  ///< columns inside the grid, which are the first ones
  std::size_t node_[strip_columns] = {};
  double fraction_[strip_columns] = {};
  alignas(64) double sample_[strip_columns] = {};
  alignas(64) double shifts_[4][strip_columns] = {};
  double* rg_before_ = shifts_[0];
  double* rg_after_ = shifts_[1];
  double* az_before_ = shifts_[2];
  double* az_after_ = shifts_[3];
};

/// The products of a polynomial c that belong to columns alone.
class POLYNOMIAL_TERMS {
 public:
  explicit POLYNOMIAL_TERMS(const double* coefficients) : c_(coefficients) {}

  void BeginStrip(int first_column) {
    for (int x = 0; x < strip_columns; ++x) {
      const double sample = first_column + x;
      c2_x_[x] = c_[2] * sample;
      c3_x_[x] = c_[3] * sample;
      c5_x_x_[x] = c_[5] * sample * sample;
    }
  }

  POLYNOMIAL_COLUMNS Columns() const { return {c2_x_, c3_x_, c5_x_x_}; }
  POLYNOMIAL_LINE Line(double line) const { return {c_[1] * line + c_[0], c_[4] * line * line}; }

 private:
  const double* c_;
  alignas(64) double c2_x_[strip_columns] = {};
  alignas(64) double c3_x_[strip_columns] = {};
  alignas(64) double c5_x_x_[strip_columns] = {};
};

class POLYNOMIAL_POSITIONS : public POSITION_ROWS {
 public:
  POLYNOMIAL_POSITIONS(const MAPPING_POLYNOMIAL& mapping, const ROW_FUNCTIONS& functions)
      : functions_(functions), rg_(mapping.RgCoefficients()), az_(mapping.AzCoefficients()) {}

  void BeginStrip(int first_column, int count) override {
    rg_.BeginStrip(first_column);
    az_.BeginStrip(first_column);
    for (int x = 0; x < strip_columns; ++x) {
      sample_[x] = x < count ? first_column + x : nan;
    }
  }

  void Fill(unsigned line, double* rg, double* az) override {
    const double y = line;
    std::fill_n(lines_, strip_columns, y);
    functions_.polynomial_positions(rg_.Columns(), rg_.Line(y), y, sample_, strip_columns, rg);
    functions_.polynomial_positions(az_.Columns(), az_.Line(y), y, lines_, strip_columns, az);
  }

 private:
  const ROW_FUNCTIONS& functions_;
  POLYNOMIAL_TERMS rg_;
  POLYNOMIAL_TERMS az_;
  alignas(64) double sample_[strip_columns] = {};
  alignas(64) double lines_[strip_columns] = {};
};

}  // namespace

std::unique_ptr<POSITION_ROWS> MakePositionRows(const MAPPING_BASE& mapping,
                                                const ROW_FUNCTIONS& functions) {
  // Exactly these classes: one derived from them may have positions of its own.
  if (typeid(mapping) == typeid(MAPPING_MATRIX)) {
    const auto& matrix = static_cast<const MAPPING_MATRIX&>(mapping);
    constexpr unsigned bilinear = MATRIX_INTERPOLATION<float>::bilinear;
    if (matrix.RgInterpolation().Degree() == bilinear &&
        matrix.AzInterpolation().Degree() == bilinear) {
      return std::make_unique<MATRIX_POSITIONS>(matrix, functions);
    }
  }
  if (typeid(mapping) == typeid(MAPPING_POLYNOMIAL)) {
    return std::make_unique<POLYNOMIAL_POSITIONS>(static_cast<const MAPPING_POLYNOMIAL&>(mapping),
                                                  functions);
  }
  return std::make_unique<PIXEL_POSITIONS>(mapping);
}
