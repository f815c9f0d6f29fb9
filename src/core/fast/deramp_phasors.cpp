#include "core/fast/deramp_phasors.h"

DERAMP_PHASORS::DERAMP_PHASORS(const DOPPLER_SAMPLER& doppler, const FOOTPRINT& footprint,
                               const RESAMPLE_JOB& job, const ROW_FUNCTIONS& functions)
    : doppler_(doppler),
      length_(footprint.Length()),
      offset_(static_cast<double>(footprint.Offset())),
      functions_(functions),
      centroids_(doppler, job.input_width, job.input_height, length_) {}

void DERAMP_PHASORS::Update(const COLUMN_TRACKER& columns) {
  EvaluateCentroids(columns);
  const double* fa = columns.AzimuthFraction();
  if (AreWithRate()) {
    functions_.rate_turns(slope_, rate_, fa, offset_, length_, strip_columns,
                          {first_.turns, step_.turns, last_.turns});
    first_.EvaluateClose(functions_, first_.turns, columns.Computed());
    step_.EvaluateClose(functions_, step_.turns, columns.Computed());
  } else {
    functions_.ramp_turns(slope_, fa, offset_, strip_columns, last_.turns);
    first_.EvaluateClose(functions_, slope_, columns.Computed());
  }
  last_.Evaluate(functions_, last_.turns);
}

void DERAMP_PHASORS::EvaluateCentroids(const COLUMN_TRACKER& columns) {
  for (int first = 0; first < strip_columns; first += group_columns) {
    if (!columns.Shifted().OfGroup(first).IsEmpty()) {
      functions_.range_times(columns.Samples() + first, doppler_.Model().range_start_time,
                             doppler_.SampleRate(), group_columns, range_time_ + first);
    }
  }
  for (const COLUMN_RUN& run : columns.Runs()) {
    const LINE_CENTROID centroid = centroids_.At(columns.SlaveLine(run));
    Evaluate(centroid.slope, run, slope_);
    if (doppler_.WithRate()) {
      Evaluate(centroid.rate, run, rate_);
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

void DERAMP_PHASORS::Evaluate(const RANGE_POLYNOMIAL& polynomial, const COLUMN_RUN& run,
                              double* row) const {
  if (run.is_whole) {
    functions_.centroid(polynomial, range_time_ + run.first, run.count, row + run.first);
    return;
  }
  double values[group_columns];
  functions_.centroid(polynomial, range_time_ + run.first, run.count, values);
  for (const int x : run.columns) {
    row[x] = values[x - run.first];
  }
}
