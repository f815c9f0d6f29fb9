#include "core/fast/column_tracker.h"

#include <algorithm>
#include <limits>

namespace {

/// Beginning of an interval that holds no position.
constexpr double no_interval = std::numeric_limits<double>::infinity();

/// The fractions [first, end) of a pixel that are `step` sub-pixel steps. Between two steps they
/// are narrowed by a margin, because rounding makes the limit uncertain; the limits of the pixel
/// itself are exact, and mappings that hit whole pixels are common.
struct FRACTIONS {
  double first;
  double end;
};

FRACTIONS FractionsOfStep(int step, int subpix_count, double margin) {
  return {step == 0 ? 0.0 : (step - 0.5) / subpix_count + margin,
          step == subpix_count ? 1.0 : (step + 0.5) / subpix_count - margin};
}

/// Larger than the rounding errors of positions and fractions, smaller than any step that matters.
double Margin(std::int64_t pixel) {
  return 1e-9 + static_cast<double>(pixel) * 0x1p-50;
}

}  // namespace

COLUMN_TRACKER::COLUMN_TRACKER(const RESAMPLE_JOB& job, const FOOTPRINT& footprint,
                               const ROW_FUNCTIONS& functions)
    : kernel_(*job.kernel),
      footprint_(footprint),
      functions_(functions),
      positions_(MakePositionRows(*job.mapping, functions)),
      range_below_(footprint.UpperLimit(job.input_width)),
      azimuth_limits_{footprint.LowerLimit(), footprint.UpperLimit(job.input_height)} {}

void COLUMN_TRACKER::BeginStrip(int first_column, int count) {
  positions_->BeginStrip(first_column, count);
  existing_ = COLUMN_SET::First(count);
  computed_ = COLUMN_SET();
  std::fill_n(columns_, strip_columns, COLUMN());
  std::fill_n(rg_first_, strip_columns, no_interval);
  FindRuns();
}

void COLUMN_TRACKER::GoTo(unsigned line) {
  line_ = line;
  looked_at_ = COLUMN_SET();
  moved_ = COLUMN_SET();
  arrangement_changed_ = false;
  positions_->Fill(line, rg_, az_);
  const std::uint64_t unsteady = functions_.find_unsteady(
      {rg_first_, rg_end_, line_shift_, fa_first_, fa_end_}, azimuth_limits_, line, rg_, az_, fa_);
  for (const int x : COLUMN_SET(unsteady).And(existing_)) {
    if (Fits(x)) {
      LookAtColumn(x);
    } else if (computed_.Holds(x)) {
      Drop(x);
    }
  }
  if (arrangement_changed_) {
    FindRuns();
  }
}

bool COLUMN_TRACKER::Fits(int x) const {
  return footprint_.LowerLimit() < rg_[x] && rg_[x] < range_below_ &&
         azimuth_limits_.above < az_[x] && az_[x] < azimuth_limits_.below;
}

void COLUMN_TRACKER::LookAtColumn(int x) {
  const TAP_POSITION range = LocateTaps(rg_[x], footprint_, kernel_);
  const TAP_POSITION azimuth = LocateTaps(az_[x], footprint_, kernel_);
  const std::int64_t line_shift = azimuth.pixel - line_;
  COLUMN& column = columns_[x];
  fa_[x] = azimuth.fraction;
  const bool reads_elsewhere =
      !computed_.Holds(x) || column.sample != range.pixel || column.line_shift != line_shift;
  const bool has_moved = reads_elsewhere || column.range_weights != range.weights;
  if (has_moved) {
    moved_.Add(x);
  }
  arrangement_changed_ = arrangement_changed_ || reads_elsewhere;
  looked_at_.Add(x);
  computed_.Add(x);
  column = {range.pixel, line_shift, range.weights, azimuth.weights};
  // A column that moves on every line is spared the intervals until it stays.
  if (!has_moved || rg_first_[x] != no_interval) {
    SetIntervals(x, range, azimuth);
  }
}

/// A column that is not computed is never steady, and has moved when it is computed again.
void COLUMN_TRACKER::Drop(int x) {
  arrangement_changed_ = true;
  computed_.Remove(x);
  rg_first_[x] = no_interval;
}

void COLUMN_TRACKER::SetIntervals(int x, const TAP_POSITION& range, const TAP_POSITION& azimuth) {
  const int subpix_count = kernel_.SubpixCount();
  const double sample = static_cast<double>(range.pixel);
  const double margin = Margin(range.pixel);
  const FRACTIONS fr = FractionsOfStep(range.step, subpix_count, margin);
  const bool at_limit = sample == footprint_.LowerLimit();  // which itself is not computed
  rg_first_[x] = sample + (at_limit && range.step == 0 ? margin : fr.first);
  rg_end_[x] = sample + fr.end;

  const FRACTIONS fa = FractionsOfStep(azimuth.step, subpix_count, Margin(azimuth.pixel));
  line_shift_[x] = static_cast<double>(columns_[x].line_shift);
  fa_first_[x] = fa.first;
  fa_end_[x] = fa.end;
}

bool COLUMN_TRACKER::IsConsecutive(int first) const {
  const COLUMN* column = columns_ + first;
  for (int i = 1; i < group_columns; ++i) {
    if (column[i].sample != column[0].sample + i || column[i].line_shift != column[0].line_shift) {
      return false;
    }
  }
  return true;
}

void COLUMN_TRACKER::FindRuns() {
  run_count_ = 0;
  in_runs_ = COLUMN_SET();
  for (int first = 0; first < strip_columns; first += group_columns) {
    if (!computed_.HoldsGroup(first) || !IsConsecutive(first)) {
      continue;
    }
    const COLUMN& column = columns_[first];
    if (first > 0 && in_runs_.Holds(first - 1) && column.sample == columns_[first - 1].sample + 1 &&
        column.line_shift == columns_[first - 1].line_shift) {
      runs_[run_count_ - 1].count += group_columns;
    } else {
      runs_[run_count_++] = {first, group_columns};
    }
    in_runs_.AddGroup(first);
  }
}
