#pragma once

#include "core/fast/column_tracker.h"
#include "core/fast/deramp_phasors.h"
#include "core/fast/row_buffer.h"
#include "core/fast/row_functions.h"

/// The sums along azimuth that finish the pixels of a strip on one output line,
///
///     out = sum over k of wa[k] P_k, every term turned by its phasor.
class AZIMUTH_SUMS {
 public:
  AZIMUTH_SUMS(int length, const ROW_FUNCTIONS& functions)
      : length_(length),
        filter_(functions.azimuth_filter(length)),
        filter_with_rate_(functions.rate_azimuth_filter(length)),
        weights_(length) {}

  /// Everything given belongs to the line at which the columns are. Columns
  /// that are not computed get any value.
  void Update(const COLUMN_TRACKER& columns, CONST_COMPLEX_ROW range_sums,
              const DERAMP_PHASORS& phasors) {
    LoadWeights(columns);
    const COMPLEX_ROW sums = {re_, im_};
    if (phasors.AreWithRate()) {
      filter_with_rate_(weights_.Row(0), range_sums, length_, phasors.Rate(), strip_columns, sums);
    } else {
      filter_(weights_.Row(0), range_sums, length_, phasors.Ramp(), strip_columns, sums);
    }
  }

  /// The pixels before they are encoded.
  CONST_COMPLEX_ROW Values() const { return {re_, im_}; }

 private:
  void LoadWeights(const COLUMN_TRACKER& columns) {
    for (const int x : columns.LookedAt()) {
      if (loaded_weights_[x] != columns[x].azimuth_weights) {
        loaded_weights_[x] = columns[x].azimuth_weights;
        weights_.FillColumn(x, loaded_weights_[x], length_);
      }
    }
  }

  const int length_;
  const AZIMUTH_FILTER filter_;
  const RATE_AZIMUTH_FILTER filter_with_rate_;
  const double* loaded_weights_[strip_columns] = {};
  ROW_BUFFER<double> weights_;
  alignas(64) double re_[strip_columns] = {};
  alignas(64) double im_[strip_columns] = {};
};
