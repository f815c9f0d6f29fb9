#pragma once

#include "core/fast/column_tracker.h"
#include "core/fast/deramp_phasors.h"
#include "core/fast/row_functions.h"
#include "core/fast/weight_rows.h"

/// The sums along azimuth that finish the pixels of a strip on one output line,
///
///     out = sum over k of wa[k] P_k, every term turned by its phasor.
class AZIMUTH_SUMS {
 public:
  AZIMUTH_SUMS(const INTERPOLATION_KERNEL& kernel, const ROW_FUNCTIONS& functions)
      : length_(kernel.Length()),
        filter_(functions.azimuth_filter(length_)),
        filter_with_rate_(functions.rate_azimuth_filter(length_)),
        weights_(kernel, functions) {}

  /// Everything given belongs to the line at which the columns are. Columns
  /// that are not computed get any value.
  void Update(const COLUMN_TRACKER& columns, const SUM_LINES& range_sums,
              const DERAMP_PHASORS& phasors) {
    weights_.Load(columns.Computed(), columns.AzimuthStepped(), columns.AzimuthSteps());
    const COMPLEX_ROW sums = {re_, im_};
    if (phasors.AreWithRate()) {
      filter_with_rate_(weights_.FirstRow(), range_sums, length_, phasors.Rate(), strip_columns,
                        sums);
    } else {
      filter_(weights_.FirstRow(), range_sums, length_, phasors.Ramp(), strip_columns, sums);
    }
  }

  /// The pixels before they are encoded.
  CONST_COMPLEX_ROW Values() const { return {re_, im_}; }

 private:
  const int length_;
  const AZIMUTH_FILTER filter_;
  const RATE_AZIMUTH_FILTER filter_with_rate_;
  WEIGHT_ROWS weights_;
  alignas(64) double re_[strip_columns] = {};
  alignas(64) double im_[strip_columns] = {};
};
