#pragma once

#include "base/aligned_values.h"
#include "core/fast/column_set.h"
#include "core/fast/row_functions.h"
#include "interpolation/interpolation_kernel.h"

/// The kernel rows of a strip's columns along one axis, arranged for vectors: one row a tap.
class WEIGHT_ROWS {
 public:
  WEIGHT_ROWS(const INTERPOLATION_KERNEL& kernel, const ROW_FUNCTIONS& functions)
      : kernel_(kernel),
        transpose_(functions.transpose_rows),
        rows_(kernel.Length(), strip_columns) {}

  /// Brings the weights of some columns to their sub-pixel steps, after the steps of others, or the
  /// same ones, have changed.
  void Load(COLUMN_SET wanted, COLUMN_SET changed, const double* steps) {
    old_ = old_.Or(changed);
    const COLUMN_SET loaded = old_.And(wanted);
    if (loaded.IsEmpty()) {
      return;
    }
    old_ = old_.Without(wanted);
    for (int first = 0; first < strip_columns; first += group_columns) {
      const COLUMN_SET columns = loaded.OfGroup(first);
      if (columns.HoldsMoreThan(most_alone)) {
        const double* kernel_rows[group_columns];
        FindRows(steps + first, kernel_rows);
        transpose_(kernel_rows, kernel_.Length(), rows_.Values() + first);
        continue;
      }
      for (const int x : columns) {
        FillColumn(x, OfStep(steps[x]));
      }
    }
  }

  /// The weights of the first tap; those of the others follow in rows of `strip_columns`.
  const double* FirstRow() const { return rows_.Values(); }

  /// A fraction within half a step of 1 takes the weights of fraction 0, and so does a column that
  /// is not computed.
  const double* OfStep(double step) const {
    const int row = static_cast<int>(step);
    return kernel_.Row(row < 0 || row == kernel_.SubpixCount() ? 0 : row);
  }

  /// Likewise for the columns of a group.
  void FindRows(const double* steps, const double* (&kernel_rows)[group_columns]) const {
    for (int i = 0; i < group_columns; ++i) {
      kernel_rows[i] = OfStep(steps[i]);
    }
  }

 private:
  /// More columns than these of a group are loaded faster all together.
  static constexpr int most_alone = 2;

  void FillColumn(int x, const double* weights) {
    double* to = rows_.Values() + x;
#pragma GCC unroll 8
    for (int j = 0; j < kernel_.Length(); ++j) {
      to[std::ptrdiff_t{j} * strip_columns] = weights[j];
    }
  }

  const INTERPOLATION_KERNEL& kernel_;
  const decltype(ROW_FUNCTIONS::transpose_rows) transpose_;
  COLUMN_SET old_;  ///< columns that have the weights of earlier steps
  ALIGNED_VALUES<double> rows_;
};
