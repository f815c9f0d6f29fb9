#include "core/fast/column_tracker.h"

#include <algorithm>
#include <limits>

COLUMN_TRACKER::COLUMN_TRACKER(const RESAMPLE_JOB& job, const FOOTPRINT& footprint,
                               const ROW_FUNCTIONS& functions)
    : footprint_(footprint),
      functions_(functions),
      positions_(MakePositionRows(*job.mapping, functions)),
      limits_{footprint.LowerLimit(), footprint.UpperLimit(job.input_width), footprint.LowerLimit(),
              footprint.UpperLimit(job.input_height)},
      subpix_count_(job.kernel->SubpixCount()) {}

void COLUMN_TRACKER::BeginStrip(int first_column, int count) {
  positions_->BeginStrip(first_column, count);
  computed_ = COLUMN_SET();
  for (double* row : {sample_, line_shift_, range_step_, azimuth_step_}) {
    std::fill_n(row, strip_columns, no_tap);
  }
  FindRuns(COLUMN_SET());
}

void COLUMN_TRACKER::GoTo(unsigned line) {
  line_ = line;
  positions_->Fill(line, rg_, az_);
  const TAP_CHANGES changes =
      functions_.locate_taps(rg_, az_, line, limits_, subpix_count_,
                             {sample_, line_shift_, range_step_, azimuth_step_, fa_});
  computed_ = COLUMN_SET(changes.computed);
  shifted_ = computed_.And(COLUMN_SET(changes.shifted));
  range_stepped_ = computed_.And(COLUMN_SET(changes.range));
  azimuth_stepped_ = computed_.And(COLUMN_SET(changes.azimuth));
  if (changes.shifted != 0) {
    FindRuns(COLUMN_SET(changes.joined));
  }
}

void COLUMN_TRACKER::FindRuns(COLUMN_SET joined) {
  constexpr std::int64_t far = std::numeric_limits<std::int64_t>::max() / 2;
  run_count_ = 0;
  singles_ = COLUMN_SET();
  window_ = {far, -far, far, -far};
  for (int first = 0; first < strip_columns; first += group_columns) {
    const COLUMN_SET group = computed_.OfGroup(first);
    COLUMN_SET first_of_parts = group.Without(joined);
    if (computed_.Holds(first)) {
      first_of_parts.Add(first);
    }
    if (first_of_parts == COLUMN_SET::Column(first) && computed_.HoldsGroup(first)) {
      AddWhole(first, joined.Holds(first));
    } else {
      AddParts(group, first_of_parts, first);
    }
  }
}

/// A group that is one part, to the run of the group before if that goes on here.
void COLUMN_TRACKER::AddWhole(int first, bool is_joined) {
  const COLUMN_RUN run = Part(COLUMN_SET::Group(first), first, first);
  if (!FitsWindow(run)) {
    singles_ = singles_.Or(run.columns);
    return;
  }
  COLUMN_RUN* last = run_count_ > 0 ? runs_ + run_count_ - 1 : nullptr;
  if (is_joined && last != nullptr && last->is_whole && last->first + last->count == first) {
    last->count += group_columns;
    last->columns = last->columns.Or(run.columns);
  } else {
    runs_[run_count_++] = run;
  }
}

void COLUMN_TRACKER::AddParts(COLUMN_SET group, COLUMN_SET first_of_parts, int first) {
  const std::size_t first_part = run_count_;
  if (first_of_parts.HoldsMoreThan(most_parts)) {
    singles_ = singles_.Or(group);
    return;
  }
  COLUMN_SET rest = group;
  for (const int x : first_of_parts) {
    // What is left from here on and not of a later part.
    const COLUMN_SET later = first_of_parts.Without(COLUMN_SET::First(x + 1));
    const COLUMN_SET part = later.IsEmpty() ? rest : rest.And(COLUMN_SET::First(*later.begin()));
    const COLUMN_RUN run = Part(part, x, first);
    if (!FitsWindow(run)) {
      run_count_ = first_part;
      singles_ = singles_.Or(group);
      return;
    }
    runs_[run_count_++] = run;
    rest = rest.Without(part);
  }
}

/// Columns of the group at `first` that read side by side, column x among them.
COLUMN_RUN COLUMN_TRACKER::Part(COLUMN_SET columns, int x, int first) const {
  return {first,   group_columns,           columns == COLUMN_SET::Group(first),
          columns, Sample(x) - (x - first), static_cast<std::int64_t>(line_shift_[x])};
}

/// Whether the window can be widened by a run, and then widens it.
bool COLUMN_TRACKER::FitsWindow(const COLUMN_RUN& run) {
  const SLAVE_WINDOW wider = {
      std::min(window_.first_sample, run.sample), std::max(window_.end_sample, run.sample),
      std::min(window_.first_line, run.line_shift), std::max(window_.end_line, run.line_shift)};
  if (wider.end_sample - wider.first_sample > most_samples_apart ||
      wider.end_line - wider.first_line > most_lines_apart) {
    return false;
  }
  window_ = wider;
  return true;
}
