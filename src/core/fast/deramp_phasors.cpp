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
