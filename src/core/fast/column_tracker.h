#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "core/fast/position_rows.h"
#include "core/fast/row_functions.h"
#include "core/footprint.h"
#include "core/resample_thr_arg.h"

/// What a column of a strip reads.
struct COLUMN {
  bool is_computed = false;
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

/// Some columns of a strip in rising order.
class COLUMN_LIST {
 public:
  void Clear() { count_ = 0; }
  void Add(int x) { columns_[count_++] = x; }
  const int* begin() const { return columns_; }
  const int* end() const { return columns_ + count_; }

 private:
  int count_ = 0;
  int columns_[strip_columns];
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

  /// Computed columns whose sample, line shift or range weights are not those of the line before.
  const COLUMN_LIST& Moved() const { return moved_; }
  /// Computed columns whose azimuth weights are not those that the column had last.
  const COLUMN_LIST& NewAzimuthWeights() const { return new_azimuth_weights_; }

  /// All computed columns are either in a run or single.
  std::span<const COLUMN_RUN> Runs() const { return {runs_, run_count_}; }
  const COLUMN_LIST& Singles() const { return singles_; }
  bool IsInRun(int x) const { return is_consecutive_[x / group_columns]; }

  int ComputedCount() const { return computed_count_; }

 private:
  void LookAtGroup(int group, unsigned unsteady);
  void LookAtColumn(int x);
  void Drop(int x);
  void SetIntervals(int x, const TAP_POSITION& range, const TAP_POSITION& azimuth);
  bool IsConsecutive(int group) const;
  void FindRuns();

  const INTERPOLATION_KERNEL& kernel_;
  const FOOTPRINT footprint_;
  const ROW_FUNCTIONS& functions_;
  const std::unique_ptr<POSITION_ROWS> positions_;
  const double range_below_;  ///< positions that are computed lie below this one
  const AZIMUTH_LIMITS azimuth_limits_;

  unsigned line_ = 0;
  int column_count_ = 0;
  int computed_count_ = 0;
  bool arrangement_changed_ = false;  ///< runs and single columns are to be found again
  COLUMN columns_[strip_columns];
  bool is_consecutive_[strip_columns / group_columns] = {};
  std::size_t run_count_ = 0;
  COLUMN_RUN runs_[strip_columns / group_columns];
  COLUMN_LIST singles_;
  COLUMN_LIST moved_;
  COLUMN_LIST new_azimuth_weights_;

  alignas(64) double rg_[strip_columns] = {};
  alignas(64) double az_[strip_columns] = {};
  alignas(64) double fa_[strip_columns] = {};
  unsigned char unsteady_[strip_columns / group_columns] = {};
  alignas(64) double rg_first_[strip_columns] = {};
  alignas(64) double rg_end_[strip_columns] = {};
  alignas(64) double line_shift_[strip_columns] = {};
  alignas(64) double fa_first_[strip_columns] = {};
  alignas(64) double fa_end_[strip_columns] = {};
};
