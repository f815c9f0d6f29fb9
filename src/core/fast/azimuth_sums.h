#pragma once

#include "core/doppler_phase.h"
#include "core/fast/column_tracker.h"
#include "core/fast/line_centroids.h"
#include "core/fast/row_buffer.h"
#include "core/fast/row_functions.h"

/// The sums along azimuth that finish the pixels of a strip on one output line,
///
///     out = sum over k of wa[k] exp(2 pi i (u (fa - t) + g (fa^2 - t^2))) P_k,  t = k - offset,
///
/// with u = fdc / PRF and g half its change from line to line at the position's own slave pixel.
class AZIMUTH_SUMS {
 public:
  AZIMUTH_SUMS(const DOPPLER_SAMPLER& doppler, const FOOTPRINT& footprint, const RESAMPLE_JOB& job,
               const ROW_FUNCTIONS& functions);

  /// `range_sums` are those of the line at which the columns are. Columns that are not computed
  /// get any value.
  void Update(const COLUMN_TRACKER& columns, CONST_COMPLEX_ROW range_sums);

  /// The un-encoded pixels.
  CONST_COMPLEX_ROW Values() const { return {re_, im_}; }

 private:
  void LoadWeights(const COLUMN_TRACKER& columns);
  void EvaluateCentroids(const COLUMN_TRACKER& columns);
  void SumRamp(const double* fa, CONST_COMPLEX_ROW range_sums);
  void SumWithRate(const double* fa, CONST_COMPLEX_ROW range_sums);

  const DOPPLER_SAMPLER& doppler_;
  const int length_;
  const double offset_;
  const ROW_FUNCTIONS& functions_;
  const AZIMUTH_FILTER filter_;
  const RATE_AZIMUTH_FILTER filter_with_rate_;
  LINE_CENTROIDS centroids_;
  ROW_BUFFER<double> weights_;

  alignas(64) double range_time_[strip_columns] = {};
  alignas(64) double slope_[strip_columns] = {};
  alignas(64) double rate_[strip_columns] = {};
  alignas(64) double re_[strip_columns] = {};
  alignas(64) double im_[strip_columns] = {};
};
