#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "core/fast/column_set.h"
#include "core/fast/position_rows.h"
#include "core/fast/row_functions.h"
#include "core/footprint.h"
#include "core/resample_thr_arg.h"

/// What a column of a strip reads.
struct COLUMN {
  std::int64_t sample = 0;                  ///< slave sample at or before the position
  std::int64_t line_shift = 0;              ///< likewise the slave line, minus the output line
  const double* range_weights = nullptr;    ///< kernel row
  const double* azimuth_weights = nullptr;  ///< kernel row
};

/// Neighbouring columns, whole groups, that read consecutive samples of one slave line.
struct COLUMN_RUN {
  int first;
  int count;
};

/// Follows the slave positions of a strip's columns from line to line.
///
/// From one output line to the next a column mostly reads one slave line further down with the
/// same sample and the same weights. So every column keeps the intervals of its position in which
/// that is so, and only where it leaves them the position is looked at anew. What changed then is
/// listed, for those who keep something for the column.
class COLUMN_TRACKER {
 public:
  COLUMN_TRACKER(const RESAMPLE_JOB& job, const FOOTPRINT& footprint,
                 const ROW_FUNCTIONS& functions);

  /// Goes over to the strip of `count` columns from `first_column` on, of which nothing is known.
  void BeginStrip(int first_column, int count);
  /// Looks at an output line: after `BeginStrip` any one, then the next ones in turn.
  void GoTo(unsigned line);

  unsigned Line() const { return line_; }
  const COLUMN& operator[](int x) const { return columns_[x]; }
  /// The slave line of the position.
  std::int64_t SlaveLine(int x) const { return columns_[x].line_shift + line_; }
  std::int64_t FirstTapSample(int x) const { return columns_[x].sample - footprint_.Offset(); }
  std::int64_t FirstTapLine(int x) const { return SlaveLine(x) - footprint_.Offset(); }

  /// The positions themselves, and the fractions of a line by which they exceed the slave line.
  const double* SlaveRange() const { return rg_; }
  const double* SlaveAzimuth() const { return az_; }
  const double* AzimuthFraction() const { return fa_; }

  /// Columns whose pixel on this line is computed.
  COLUMN_SET Computed() const { return computed_; }
  /// Those of them that were looked at anew.
  COLUMN_SET LookedAt() const { return looked_at_; }
  /// Those of them whose sample, line shift or range weights are not those of the line before.
  COLUMN_SET Moved() const { return moved_; }

  std::span<const COLUMN_RUN> Runs() const { return {runs_, run_count_}; }
  COLUMN_SET InRuns() const { return in_runs_; }
  /// Computed columns that are in no run.
  COLUMN_SET Singles() const { return computed_.Without(in_runs_); }

 private:
  bool Fits(int x) const;
  void LookAtColumn(int x);
  void Drop(int x);
  void SetIntervals(int x, const TAP_POSITION& range, const TAP_POSITION& azimuth);
  bool IsConsecutive(int first) const;
  void FindRuns();

  const INTERPOLATION_KERNEL& kernel_;
  const FOOTPRINT footprint_;
  const ROW_FUNCTIONS& functions_;
  const std::unique_ptr<POSITION_ROWS> positions_;
  const double range_below_;  ///< positions that are computed lie below this one
  const AZIMUTH_LIMITS azimuth_limits_;

  unsigned line_ = 0;
  COLUMN_SET existing_;  ///< columns that the output has
  COLUMN_SET computed_;
  COLUMN_SET looked_at_;
  COLUMN_SET moved_;
  COLUMN_SET in_runs_;
  bool arrangement_changed_ = false;  ///< runs are to be found again
  std::size_t run_count_ = 0;
  COLUMN_RUN runs_[strip_columns / group_columns];
  COLUMN columns_[strip_columns];

  alignas(64) double rg_[strip_columns] = {};
  alignas(64) double az_[strip_columns] = {};
  alignas(64) double fa_[strip_columns] = {};
  alignas(64) double rg_first_[strip_columns] = {};
  alignas(64) double rg_end_[strip_columns] = {};
  alignas(64) double line_shift_[strip_columns] = {};
  alignas(64) double fa_first_[strip_columns] = {};
  alignas(64) double fa_end_[strip_columns] = {};
};
