#include "core/fast/azimuth_sums.h"

namespace {

/// Sine and cosine of a row of angles.
struct PHASORS {
  alignas(64) double turns[strip_columns];
  alignas(64) double re[strip_columns];
  alignas(64) double im[strip_columns];

  CONST_COMPLEX_ROW Evaluate(const ROW_FUNCTIONS& functions) { return Evaluate(functions, turns); }
  CONST_COMPLEX_ROW Evaluate(const ROW_FUNCTIONS& functions, const double* angles) {
    functions.sine_cosine(angles, strip_columns, {re, im});
    return {re, im};
  }
};

}  // namespace

AZIMUTH_SUMS::AZIMUTH_SUMS(const DOPPLER_SAMPLER& doppler, const FOOTPRINT& footprint,
                           const RESAMPLE_JOB& job, const ROW_FUNCTIONS& functions)
    : doppler_(doppler),
      length_(footprint.Length()),
      offset_(static_cast<double>(footprint.Offset())),
      functions_(functions),
      filter_(functions.azimuth_filter(length_)),
      filter_with_rate_(functions.rate_azimuth_filter(length_)),
      centroids_(doppler, job.input_width, job.input_height, length_),
      weights_(length_) {}

void AZIMUTH_SUMS::Update(const COLUMN_TRACKER& columns, CONST_COMPLEX_ROW range_sums) {
  LoadWeights(columns);
  EvaluateCentroids(columns);
  if (doppler_.WithRate()) {
    SumWithRate(columns.AzimuthFraction(), range_sums);
  } else {
    SumRamp(columns.AzimuthFraction(), range_sums);
  }
}

void AZIMUTH_SUMS::LoadWeights(const COLUMN_TRACKER& columns) {
  for (const int x : columns.NewAzimuthWeights()) {
    const double* weights = columns[x].azimuth_weights;
    for (int k = 0; k < length_; ++k) {
      weights_.Row(k)[x] = weights[k];
    }
  }
}

void AZIMUTH_SUMS::EvaluateCentroids(const COLUMN_TRACKER& columns) {
  for (const int x : columns.Moved()) {
    range_time_[x] = doppler_.RangeTime(columns[x].sample);
  }
  for (const COLUMN_RUN& run : columns.Runs()) {
    const LINE_CENTROID centroid = centroids_.At(columns.SlaveLine(run.first));
    functions_.centroid(centroid.slope, range_time_ + run.first, run.count, slope_ + run.first);
    if (doppler_.WithRate()) {
      functions_.centroid(centroid.rate, range_time_ + run.first, run.count, rate_ + run.first);
    }
  }
  for (const int x : columns.Singles()) {
    const LINE_CENTROID centroid = centroids_.At(columns.SlaveLine(x));
    slope_[x] = ValueAt(centroid.slope, range_time_[x]);
    if (doppler_.WithRate()) {
      rate_[x] = ValueAt(centroid.rate, range_time_[x]);
    }
  }
}

void AZIMUTH_SUMS::SumRamp(const double* fa, CONST_COMPLEX_ROW range_sums) {
  PHASORS ramp;
  PHASORS last;
  functions_.ramp_turns(slope_, fa, offset_, strip_columns, last.turns);
  filter_(weights_.Row(0), range_sums, length_, ramp.Evaluate(functions_, slope_),
          last.Evaluate(functions_), strip_columns, {re_, im_});
}

void AZIMUTH_SUMS::SumWithRate(const double* fa, CONST_COMPLEX_ROW range_sums) {
  PHASORS first;
  PHASORS step;
  PHASORS last;
  functions_.rate_turns(slope_, rate_, fa, offset_, length_, strip_columns,
                        {first.turns, step.turns, last.turns});
  filter_with_rate_(weights_.Row(0), range_sums, length_, first.Evaluate(functions_),
                    step.Evaluate(functions_), last.Evaluate(functions_), strip_columns,
                    {re_, im_});
}
