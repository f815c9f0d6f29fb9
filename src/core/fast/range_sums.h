#pragma once

#include <algorithm>
#include <cstdint>

#include "core/fast/column_tracker.h"
#include "core/fast/line_ring.h"
#include "core/fast/prefetch.h"
#include "core/fast/row_buffer.h"
#include "core/fast/row_functions.h"
#include "core/fast/slave_rows.h"

/// The sums along range that the columns of a strip need for an output line,
///
///     P_k = sum over j of wr[j] z(line k, sample j),
///
/// for the L slave lines k of the footprint, and whether all pixels of each sum are valid. While a
/// column stays, one sum is new on each output line. However a sum
/// comes about - in a run, for a single column, because a column moved - its bits are the same.
template <class PIXEL>
class RANGE_SUMS {
 public:
  RANGE_SUMS(const SLAVE_ROWS<PIXEL>& slave, int length, const ROW_FUNCTIONS& functions,
             const PIXEL_FUNCTIONS<PIXEL>& pixel_functions)
      : slave_(slave),
        length_(length),
        ring_(length),
        filter_run_(functions.filter_range),
        filter_mask_(functions.filter_mask),
        filter_footprint_(pixel_functions.footprint_filter(length)),
        decode_(pixel_functions.decode),
        weights_(length),
        re_(ring_.Rows()),
        im_(ring_.Rows()),
        valid_(slave.mask != nullptr ? ring_.Rows() : 0) {}

  /// Brings the sums to the line at which the columns are.
  void Update(const COLUMN_TRACKER& columns) {
    oldest_row_ = ring_.OldestRow(columns.Line());
    const int newest_row = oldest_row_ + length_ - 1;
    has_invalid_[newest_row] = has_invalid_[ring_.Twin(newest_row)] = false;
    const COLUMN_SET refilled = Refill(columns);
    for (const COLUMN_RUN& run : columns.Runs()) {
      FilterRun(columns, run, length_ - 1);
    }
    for (const int x : columns.Singles().Without(refilled)) {
      FilterColumn(columns, x, length_ - 1);
    }
  }

  /// Sums of the oldest line; those of the later ones follow in rows of `strip_columns`.
  CONST_COMPLEX_ROW Sums() { return {re_.Row(oldest_row_), im_.Row(oldest_row_)}; }

  /// Whether any of the sums may have met an invalid pixel.
  bool HaveInvalid() const {
    const bool* oldest = has_invalid_ + oldest_row_;
    return std::find(oldest, oldest + length_, true) != oldest + length_;
  }
  /// 1 or 0 in the arrangement of the sums. Only with a mask.
  const unsigned char* Validity() { return valid_.Row(oldest_row_); }

 private:
  /// From this many columns of a group on, making all of them anew together is faster.
  static constexpr int columns_worth_a_group = 4;

  /// Makes the sums of columns anew that moved or were not kept. Returns the columns whose newest
  /// sum is there too.
  COLUMN_SET Refill(const COLUMN_TRACKER& columns) {
    COLUMN_SET one_by_one = columns.Moved().Or(fleeting_.And(columns.Computed()));
    for (int first = 0; first < strip_columns; first += group_columns) {
      const COLUMN_SET moved = columns.Moved().OfGroup(first);
      if (moved.IsEmpty() || !columns.InRuns().Holds(first)) {
        continue;
      }
      LoadWeights(columns, first);
      if (moved.Count() >= columns_worth_a_group) {
        for (int k = 0; k < length_ - 1; ++k) {
          FilterRun(columns, {first, group_columns}, k);
        }
        one_by_one = one_by_one.Without(moved);
      }
    }
    fleeting_ = one_by_one.And(moved_before_);
    for (const int x : one_by_one) {
      FilterColumn(columns, x, 0);
    }
    moved_before_ = columns.Moved();
    return one_by_one;
  }

  /// Weights as runs need them: one row a tap.
  void LoadWeights(const COLUMN_TRACKER& columns, int group_first) {
    for (int x = group_first; x < group_first + group_columns; ++x) {
      if (loaded_weights_[x] != columns[x].range_weights) {
        loaded_weights_[x] = columns[x].range_weights;
        weights_.FillColumn(x, loaded_weights_[x], length_);
      }
    }
  }

  /// Line k of the footprint for a run.
  void FilterRun(const COLUMN_TRACKER& columns, const COLUMN_RUN& run, int k) {
    const std::int64_t line = columns.FirstTapLine(run.first) + k;
    const std::int64_t sample = columns.FirstTapSample(run.first);
    const int row = oldest_row_ + k;
    const int twin = ring_.Twin(row);
    PrefetchAhead(line, sample, run.count + length_ - 1);
    Decode(line, sample, run.count + length_ - 1);
    filter_run_(weights_.Row(0) + run.first, {pixels_re_, pixels_im_}, length_, run.count,
                {re_.Row(row) + run.first, im_.Row(row) + run.first},
                {re_.Row(twin) + run.first, im_.Row(twin) + run.first});
    if (slave_.mask != nullptr) {
      FilterMask(line, sample, run, row);
    }
  }

  void FilterMask(std::int64_t line, std::int64_t sample, const COLUMN_RUN& run, int row) {
    unsigned char* valid = valid_.Row(row) + run.first;
    if (slave_.AreValid(line, sample, run.count + length_ - 1)) {
      std::fill_n(valid, run.count, static_cast<unsigned char>(1));
    } else {
      filter_mask_(slave_.mask[line] + sample, length_, run.count, valid);
      NoteInvalid(row);
    }
    std::copy_n(valid, run.count, valid_.Row(ring_.Twin(row)) + run.first);
  }

  void NoteInvalid(int row) { has_invalid_[row] = has_invalid_[ring_.Twin(row)] = true; }

  void PrefetchAhead(std::int64_t line, std::int64_t sample, int count) const {
    constexpr std::int64_t lines_ahead = 4;
    if (line + lines_ahead < slave_.height) {
      const PIXEL* pixels = slave_.pixels[line + lines_ahead] + sample;
      Prefetch(pixels, pixels + count);
    }
  }

  /// Some more pixels than asked for when the line has them: whole groups are faster.
  void Decode(std::int64_t line, std::int64_t sample, int count) {
    const int rounded = (count + group_columns - 1) / group_columns * group_columns;
    const int possible = static_cast<int>(std::min<std::int64_t>(rounded, slave_.width - sample));
    decode_(slave_.pixels[line] + sample, possible, {pixels_re_, pixels_im_});
  }

  /// Lines first_k .. L - 1 of the footprint for one column.
  void FilterColumn(const COLUMN_TRACKER& columns, int x, int first_k) {
    const std::int64_t line = columns.FirstTapLine(x) + first_k;
    const std::int64_t sample = columns.FirstTapSample(x);
    const int first_row = oldest_row_ + first_k;
    filter_footprint_(slave_.pixels + line, sample, columns[x].range_weights, length_,
                      oldest_row_ + length_ - first_row,
                      {re_.Row(first_row) + x, im_.Row(first_row) + x});
    if (slave_.mask != nullptr) {
      FindValid(line, sample, x, first_row);
    }
    if (!fleeting_.Holds(x)) {
      CopyToTwins(x, first_row);
    }
  }

  void CopyToTwins(int x, int first_row) {
    const int first_copied = std::max(first_row, length_);
    const int count = oldest_row_ + length_ - first_copied;
    re_.CopyColumn(x, first_copied, first_copied - length_, count);
    im_.CopyColumn(x, first_copied, first_copied - length_, count);
    if (slave_.mask != nullptr) {
      valid_.CopyColumn(x, first_copied, first_copied - length_, count);
    }
  }

  /// The validity of the rows from `first_row` on of one column, the first one of them being that
  /// of the given slave line.
  void FindValid(std::int64_t line, std::int64_t sample, int x, int first_row) {
    for (int row = first_row; row < oldest_row_ + length_; ++row, ++line) {
      const bool is_valid = slave_.AreValid(line, sample, length_);
      valid_.Row(row)[x] = is_valid ? 1 : 0;
      if (!is_valid) {
        NoteInvalid(row);
      }
    }
  }

  const SLAVE_ROWS<PIXEL> slave_;
  const int length_;
  const LINE_RING ring_;
  const decltype(ROW_FUNCTIONS::filter_range) filter_run_;
  const decltype(ROW_FUNCTIONS::filter_mask) filter_mask_;
  const FOOTPRINT_FILTER<PIXEL> filter_footprint_;
  const decltype(PIXEL_FUNCTIONS<PIXEL>::decode) decode_;

  int oldest_row_ = 0;
  COLUMN_SET moved_before_;  ///< on the line before
  /// Columns that moved on two lines in a row will probably move again: their sums are kept for
  /// this line only, which spares the twins.
  COLUMN_SET fleeting_;
  const double* loaded_weights_[strip_columns] = {};
  ROW_BUFFER<double> weights_;
  ROW_BUFFER<double> re_;
  ROW_BUFFER<double> im_;
  ROW_BUFFER<unsigned char> valid_;
  bool has_invalid_[2 * longest_kernel] = {};  ///< by row
  alignas(64) double pixels_re_[strip_columns + longest_kernel + group_columns] = {};
  alignas(64) double pixels_im_[strip_columns + longest_kernel + group_columns] = {};
};
