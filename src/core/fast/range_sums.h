#pragma once

#include <bit>
#include <cstdint>

#include "base/aligned_values.h"
#include "core/fast/column_tracker.h"
#include "core/fast/row_functions.h"
#include "core/fast/slave_lines.h"
#include "core/fast/slave_rows.h"
#include "core/fast/weight_rows.h"

/// The sums along range that the columns of a strip need for an output line,
///
///     P_k = sum over j of wr[j] z(line k, sample j),
///
/// for the L slave lines k of the footprint. While a column stays, one sum is new on each output
/// line; where it moves, all are. However a sum comes about, its bits are the same.
template <class PIXEL>
class RANGE_SUMS {
 public:
  RANGE_SUMS(const SLAVE_ROWS<PIXEL>& slave, const INTERPOLATION_KERNEL& kernel,
             const ROW_FUNCTIONS& functions, const PIXEL_FUNCTIONS<PIXEL>& pixel_functions)
      : slave_(slave),
        length_(kernel.Length()),
        row_mask_(std::bit_ceil(static_cast<unsigned>(length_)) - 1),
        filter_run_(functions.range_filter(length_)),
        filter_group_(functions.group_filter(length_)),
        filter_footprint_(pixel_functions.footprint_filter(length_)),
        weights_(kernel, functions),
        sums_(std::ptrdiff_t{row_mask_} + 1, std::ptrdiff_t{2} * strip_columns) {}

  /// Brings the sums to the line at which the columns are. `lines` holds what the runs read.
  void Update(const COLUMN_TRACKER& columns, const SLAVE_LINES<PIXEL>& lines) {
    oldest_row_ = columns.Line() & row_mask_;
    const COLUMN_SET moved = columns.Shifted().Or(columns.RangeStepped());
    const COLUMN_SET anew = FindAnew(columns, moved);
    weights_.Load(columns.Computed().Without(columns.Singles()).Without(anew),
                  columns.RangeStepped(), columns.RangeSteps());
    for (const COLUMN_RUN& run : columns.Runs()) {
      if (anew.And(run.columns).IsEmpty()) {
        FilterRun(columns, lines, run);
      } else {
        FilterByGroups(columns, lines, run, anew);
      }
    }
    for (const int x : columns.Singles().Without(moved)) {
      FilterColumn(columns, x, length_ - 1);
    }
    for (const int x : moved.Without(anew)) {
      FilterColumn(columns, x, 0);
    }
  }

  SUM_LINES Sums() { return SumsFrom(0, 0); }

 private:
  /// More moved columns than these of a group are made anew faster all together.
  static constexpr int most_alone = 2;

  SUM_LINES SumsFrom(int x, int k) {
    return {sums_.Values() + x, row_mask_, oldest_row_ + static_cast<unsigned>(k)};
  }

  /// Columns of runs that are made anew together with the others of their group.
  static COLUMN_SET FindAnew(const COLUMN_TRACKER& columns, COLUMN_SET moved) {
    COLUMN_SET anew;
    for (const COLUMN_RUN& run : columns.Runs()) {
      const COLUMN_SET of_run = moved.And(run.columns);
      for (int first = run.first; first < run.first + run.count; first += group_columns) {
        if (of_run.OfGroup(first).HoldsMoreThan(most_alone)) {
          anew = anew.Or(run.columns.OfGroup(first));
        }
      }
    }
    return anew;
  }

  void FilterByGroups(const COLUMN_TRACKER& columns, const SLAVE_LINES<PIXEL>& lines,
                      const COLUMN_RUN& run, COLUMN_SET anew) {
    for (int first = run.first; first < run.first + run.count; first += group_columns) {
      const COLUMN_RUN group = {first,
                                group_columns,
                                run.is_whole,
                                run.columns.OfGroup(first),
                                run.sample + first - run.first,
                                run.line_shift};
      if (anew.And(group.columns).IsEmpty()) {
        FilterRun(columns, lines, group);
      } else {
        FilterGroup(columns, lines, group);
      }
    }
  }

  /// The last line of the footprint for a run.
  void FilterRun(const COLUMN_TRACKER& columns, const SLAVE_LINES<PIXEL>& lines,
                 const COLUMN_RUN& run) {
    const RING_LINES<double> pixels =
        lines.Pixels(columns.FirstTapLine(run), columns.FirstTapSample(run));
    filter_run_(weights_.FirstRow() + run.first, pixels.Line(length_ - 1),
                lines.ImaginaryDistance(), length_, run.count, run.columns.Bits() >> run.first,
                SumsFrom(run.first, 0).Line(length_ - 1));
  }

  /// All lines for a run that is a group.
  void FilterGroup(const COLUMN_TRACKER& columns, const SLAVE_LINES<PIXEL>& lines,
                   const COLUMN_RUN& run) {
    const double* kernel_rows[group_columns];
    weights_.FindRows(columns.RangeSteps() + run.first, kernel_rows);
    filter_group_(kernel_rows, lines.Pixels(columns.FirstTapLine(run), columns.FirstTapSample(run)),
                  lines.ImaginaryDistance(), length_,
                  static_cast<unsigned>(run.columns.Bits() >> run.first), SumsFrom(run.first, 0));
  }

  /// Lines first_k .. L - 1 for one column.
  void FilterColumn(const COLUMN_TRACKER& columns, int x, int first_k) {
    filter_footprint_(slave_.pixels + columns.FirstTapLine(x) + first_k, columns.FirstTapSample(x),
                      weights_.OfStep(columns.RangeSteps()[x]), length_, length_ - first_k,
                      SumsFrom(x, first_k));
  }

  const SLAVE_ROWS<PIXEL> slave_;
  const int length_;
  const unsigned row_mask_;
  const RANGE_FILTER filter_run_;
  const GROUP_FILTER filter_group_;
  const FOOTPRINT_FILTER<PIXEL> filter_footprint_;
  unsigned oldest_row_ = 0;
  WEIGHT_ROWS weights_;
  ALIGNED_VALUES<double> sums_;  ///< a ring of rows: real parts, imaginary parts
};
