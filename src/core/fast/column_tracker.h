#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "core/fast/column_set.h"
#include "core/fast/position_rows.h"
#include "core/fast/row_functions.h"
#include "core/footprint.h"
#include "core/resample_thr_arg.h"

/// Neighbouring columns that read consecutive samples of one slave line: column first + i reads
/// sample + i. They are whole groups, or some columns of one group.
struct COLUMN_RUN {
  int first;
  int count;
  bool is_whole;  ///< all `count` columns from the first one on
  COLUMN_SET columns;
  std::int64_t sample;
  std::int64_t line_shift;  ///< the slave line minus the output line
};

/// A part of the slave.
struct SLAVE_WINDOW {
  std::int64_t first_sample;
  std::int64_t end_sample;
  std::int64_t first_line;
  std::int64_t end_line;
};

/// Follows the slave positions of a strip's columns from line to line: where their taps lie, what
/// of it has changed, and which columns read side by side.
class COLUMN_TRACKER {
 public:
  COLUMN_TRACKER(const RESAMPLE_JOB& job, const FOOTPRINT& footprint,
                 const ROW_FUNCTIONS& functions);

  /// Goes over to the strip of `count` columns from `first_column` on, of which nothing is known.
  void BeginStrip(int first_column, int count);
  /// Looks at an output line: after `BeginStrip` any one, then the next ones in turn.
  void GoTo(unsigned line);

  unsigned Line() const { return line_; }
  /// The positions themselves, and the fractions of a line by which they exceed the slave line.
  const double* SlaveRange() const { return rg_; }
  const double* SlaveAzimuth() const { return az_; }
  const double* AzimuthFraction() const { return fa_; }

  /// The slave pixel at or before the position, also as a row.
  const double* Samples() const { return sample_; }
  std::int64_t Sample(int x) const { return static_cast<std::int64_t>(sample_[x]); }
  std::int64_t SlaveLine(int x) const { return static_cast<std::int64_t>(line_shift_[x]) + line_; }
  std::int64_t FirstTapSample(int x) const { return Sample(x) - footprint_.Offset(); }
  std::int64_t FirstTapLine(int x) const { return SlaveLine(x) - footprint_.Offset(); }
  /// Kernel rows of the position, in sub-pixel steps.
  const double* RangeSteps() const { return range_step_; }
  const double* AzimuthSteps() const { return azimuth_step_; }

  /// Columns whose pixel on this line is computed.
  COLUMN_SET Computed() const { return computed_; }
  /// Those of them whose slave pixel is not that of the line before, one line further down.
  COLUMN_SET Shifted() const { return shifted_; }
  /// Those whose kernel rows are not those of the line before.
  COLUMN_SET RangeStepped() const { return range_stepped_; }
  COLUMN_SET AzimuthStepped() const { return azimuth_stepped_; }

  /// Computed columns are each in one run, or single because their neighbours read elsewhere.
  std::span<const COLUMN_RUN> Runs() const { return {runs_, run_count_}; }
  COLUMN_SET Singles() const { return singles_; }
  /// What the runs read, from the first tap of the first one to the last of the last one.
  SLAVE_WINDOW WindowOfRuns() const {
    const std::int64_t offset = footprint_.Offset();
    const std::int64_t length = footprint_.Length();
    return {window_.first_sample - offset, window_.end_sample - offset + group_columns - 1 + length,
            window_.first_line + line_ - offset, window_.end_line + line_ - offset + length};
  }
  std::int64_t SlaveLine(const COLUMN_RUN& run) const { return run.line_shift + line_; }
  std::int64_t FirstTapSample(const COLUMN_RUN& run) const {
    return run.sample - footprint_.Offset();
  }
  std::int64_t FirstTapLine(const COLUMN_RUN& run) const {
    return SlaveLine(run) - footprint_.Offset();
  }

  /// The window never holds more than so many lines, and samples, beyond those of one group.
  static constexpr int most_lines_apart = 8;
  static constexpr int most_samples_apart = strip_columns;

 private:
  /// In how many parts a group may fall before its columns are looked at one by one.
  static constexpr int most_parts = 3;

  void FindRuns(COLUMN_SET joined);
  void AddWhole(int first, bool is_joined);
  void AddParts(COLUMN_SET group, COLUMN_SET first_of_parts, int first);
  COLUMN_RUN Part(COLUMN_SET columns, int x, int first) const;
  bool FitsWindow(const COLUMN_RUN& run);

  const FOOTPRINT footprint_;
  const ROW_FUNCTIONS& functions_;
  const std::unique_ptr<POSITION_ROWS> positions_;
  const POSITION_LIMITS limits_;
  const double subpix_count_;

  unsigned line_ = 0;
  COLUMN_SET computed_;
  COLUMN_SET shifted_;
  COLUMN_SET range_stepped_;
  COLUMN_SET azimuth_stepped_;
  COLUMN_SET singles_;
  std::size_t run_count_ = 0;
  COLUMN_RUN runs_[most_parts * strip_columns / group_columns];
  SLAVE_WINDOW window_;  ///< of the runs: samples of their first columns, line shifts

  alignas(64) double rg_[strip_columns] = {};
  alignas(64) double az_[strip_columns] = {};
  alignas(64) double fa_[strip_columns] = {};
  alignas(64) double sample_[strip_columns] = {};
  alignas(64) double line_shift_[strip_columns] = {};
  alignas(64) double range_step_[strip_columns] = {};
  alignas(64) double azimuth_step_[strip_columns] = {};
};
