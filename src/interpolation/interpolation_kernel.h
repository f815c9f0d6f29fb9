#pragma once

#include <cstddef>

#include "base/aligned_values.h"
#include "interpolation/kernel_type.h"

struct KERNEL_SHAPE;

/// A table of one-dimensional interpolation weights: one row for each of N sub-pixel positions,
/// L weights a row.
///
/// Row k serves target positions with the fractional part k / N. Its weight i applies to the
/// sample at offset i - (L / 2 - 1), integer division, from the sample at or before the target,
/// and is the kernel's value at the distance of that sample from the target. Weights are kept as
/// computed; a row's sum is not normalised to one.
///
/// After set-up the table is only read, by any number of threads.
class INTERPOLATION_KERNEL {
 public:
  INTERPOLATION_KERNEL() = default;
  INTERPOLATION_KERNEL(const INTERPOLATION_KERNEL&) = delete;
  INTERPOLATION_KERNEL& operator=(const INTERPOLATION_KERNEL&) = delete;

  /// Computes the table, again on an object that holds one already.
  ///
  /// `length` is L, `subpix_count` N, `coefficient` the Kaiser weight (the window's shape
  /// parameter divided by pi). Each shape has its rules, see `KERNEL_SHAPE`, and what breaks them
  /// is corrected with a warning: cubic convolution has exactly 6 taps, the others at least 6, and
  /// the Kaiser weight is not negative. The Kaiser window is scaled by the length as requested, so
  /// that taps beyond half of that length are outside of it: each is reported and weighs 0.
  ///
  /// A type without a kernel leaves the new rows 0. Throws ERROR_ARGUMENT for less than one
  /// sub-pixel position and for a Kaiser weight whose window is no number, and ERROR_NO_MEMORY for
  /// a table that cannot be allocated.
  void InitKernel(const BASIC::TYPES::KernelType& type, int length, int subpix_count,
                  float coefficient);

  const BASIC::TYPES::KernelType& Type() const noexcept { return type_; }
  /// The Kaiser weight in force; 0 for the shapes without one.
  float Coefficient() const noexcept { return coefficient_; }
  /// Number of taps L after corrections. Without a kernel the requested one, which may be below 1.
  int Length() const noexcept { return length_; }
  /// Number of sub-pixel positions N.
  int SubpixCount() const noexcept { return subpix_count_; }
  /// Whether the table has been computed.
  bool HasTable() const noexcept { return has_table_; }
  /// The L weights of sub-pixel position k, 0 <= k < N. A row begins a cache line, and zeros fill
  /// its last one.
  const double* Row(int k) const noexcept { return table_.Values() + k * row_stride_; }

 private:
  void CorrectParameters(const KERNEL_SHAPE& shape);
  void ResizeTable();
  void FillTable(const KERNEL_SHAPE& shape, float requested_length);

  BASIC::TYPES::KernelType type_;
  float coefficient_ = 0.0F;
  int length_ = 0;
  int subpix_count_ = 0;
  bool has_table_ = false;
  std::ptrdiff_t row_stride_ = 0;
  ALIGNED_VALUES<double> table_;
};
