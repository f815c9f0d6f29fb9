#pragma once

#include <algorithm>
#include <cstdint>

#include "base/unaligned.h"
#include "core/block_findings.h"
#include "core/fast/azimuth_sums.h"
#include "core/fast/column_tracker.h"
#include "core/fast/deramp_phasors.h"
#include "core/fast/range_sums.h"
#include "core/fast/row_functions.h"
#include "core/fast/slave_lines.h"
#include "core/fast/slave_rows.h"
#include "core/pixel_evaluation.h"

/// Resamples strips of columns, each one line by line downwards.
///
/// The kernel sum of a pixel separates into sums along range and one along azimuth. The sums along
/// range of neighbouring lines are the same ones while a column stays, so a strip keeps them.
template <class CODEC>
class STRIP {
 public:
  using PIXEL = typename CODEC::PIXEL;

  /// `input` and `output` are row tables; everything is borrowed.
  STRIP(const RESAMPLE_JOB& job, const PIXEL* const* input, PIXEL* const* output,
        const ROW_FUNCTIONS& functions, const PIXEL_FUNCTIONS<PIXEL>& pixel_functions)
      : output_(output),
        output_mask_(RowsOf(job.output_mask)),
        output_width_(job.output_width),
        functions_(functions),
        pixel_functions_(pixel_functions),
        evaluation_(job, input),
        findings_(job),
        length_(evaluation_.Footprint().Length()),
        with_validity_(job.input_mask != nullptr && job.output_mask != nullptr),
        columns_(job, evaluation_.Footprint(), functions),
        slave_{input, with_validity_ ? RowsOf(job.input_mask) : nullptr, job.input_width,
               job.input_height},
        slave_lines_(slave_, length_, functions, pixel_functions),
        range_sums_(slave_, *job.kernel, functions, pixel_functions),
        phasors_(evaluation_.Doppler(), evaluation_.Footprint(), job, functions),
        azimuth_sums_(*job.kernel, functions) {}

  /// The strip that begins at `first_column`, on the lines first_line to last_line.
  void Resample(int first_column, unsigned first_line, unsigned last_line) {
    first_column_ = first_column;
    column_count_ = std::min(strip_columns, output_width_ - first_column);
    columns_.BeginStrip(first_column, column_count_);
    for (unsigned line = first_line; line <= last_line; ++line) {
      columns_.GoTo(line);
      if (columns_.Computed().IsEmpty()) {
        continue;
      }
      if (line < last_line) {
        PrefetchOutput(line + 1);
      }
      if (!columns_.Runs().empty()) {
        slave_lines_.Hold(columns_.WindowOfRuns());
      }
      range_sums_.Update(columns_, slave_lines_);
      phasors_.Update(columns_);
      azimuth_sums_.Update(columns_, range_sums_.Sums(), phasors_);
      StorePixels();
      if (output_mask_ != nullptr) {
        StoreMask();
      }
    }
  }

 private:
  static unsigned char* const* RowsOf(const MEM_MGR* mask) {
    return mask != nullptr ? mask->Rows<unsigned char>() : nullptr;
  }

  void PrefetchOutput(unsigned line) const {
    const PIXEL* pixels = output_[line] + first_column_;
    functions_.prefetch_written(pixels, pixels + column_count_);
    if (output_mask_ != nullptr) {
      const unsigned char* mask = output_mask_[line] + first_column_;
      functions_.prefetch_written(mask, mask + column_count_);
    }
  }

  void StorePixels() {
    PIXEL* pixels = output_[columns_.Line()] + first_column_;
    if (columns_.Computed() == COLUMN_SET::First(strip_columns)) {
      const ENCODED_ROW row =
          pixel_functions_.encode(azimuth_sums_.Values(), strip_columns, pixels);
      if (row.is_complete) {
        findings_.at_ends += row.at_ends;
        return;
      }
    } else {
      PIXEL encoded[strip_columns];
      const ENCODED_ROW row =
          pixel_functions_.encode(azimuth_sums_.Values(), strip_columns, encoded);
      CopyComputed(encoded, pixels);
      if (row.is_complete && row.at_ends == 0) {
        return;
      }
    }
    LookAtSingly(pixels);
  }

  /// Completes and counts what the row functions could not. Values that are not usual are evaluated
  /// anew: the order of operations matters to them.
  void LookAtSingly(PIXEL* pixels) {
    const CONST_COMPLEX_ROW values = azimuth_sums_.Values();
    for (const int x : columns_.Computed()) {
      if (!INTERPOLATED{values.re[x], values.im[x]}.IsUsual()) {
        const INTERPOLATED result =
            evaluation_.At(columns_.SlaveRange()[x], columns_.SlaveAzimuth()[x]);
        pixels[x] = {CODEC::Encode(result.re), CODEC::Encode(result.im)};
        findings_.met_non_finite = true;
      }
      findings_.CountAtEnds<CODEC>(LoadUnaligned(pixels + x));
    }
  }

  void StoreMask() {
    unsigned char valid[strip_columns];
    std::fill_n(valid, strip_columns, static_cast<unsigned char>(1));
    if (with_validity_) {
      FindValid(valid);
    }
    CopyComputed(valid, output_mask_[columns_.Line()] + first_column_);
  }

  void FindValid(unsigned char* valid) const {
    for (const COLUMN_RUN& run : columns_.Runs()) {
      const std::int64_t line = columns_.FirstTapLine(run);
      if (slave_lines_.HaveInvalid(line)) {
        unsigned char of_run[strip_columns];
        functions_.combine_masks(slave_lines_.Validity(line, columns_.FirstTapSample(run)), length_,
                                 run.count, of_run);
        for (const int x : run.columns) {
          valid[x] = of_run[x - run.first];
        }
      }
    }
    for (const int x : columns_.Singles()) {
      const bool is_valid =
          slave_.IsValid(columns_.FirstTapLine(x), columns_.FirstTapSample(x), length_);
      valid[x] = is_valid ? 1 : 0;
    }
  }

  template <class T>
  void CopyComputed(const T* values, T* row) const {
    if (columns_.Computed() == COLUMN_SET::First(column_count_)) {
      std::copy_n(values, column_count_, row);
      return;
    }
    for (const int x : columns_.Computed()) {
      row[x] = values[x];
    }
  }

  PIXEL* const* output_;
  unsigned char* const* output_mask_;
  const int output_width_;
  const ROW_FUNCTIONS& functions_;
  const PIXEL_FUNCTIONS<PIXEL>& pixel_functions_;
  const PIXEL_EVALUATION<CODEC> evaluation_;
  BLOCK_FINDINGS findings_;
  const int length_;
  const bool with_validity_;  ///< whether the mask of the output differs from ones
  COLUMN_TRACKER columns_;
  const SLAVE_ROWS<PIXEL> slave_;
  SLAVE_LINES<PIXEL> slave_lines_;
  RANGE_SUMS<PIXEL> range_sums_;
  DERAMP_PHASORS phasors_;
  AZIMUTH_SUMS azimuth_sums_;
  int first_column_ = 0;
  int column_count_ = 0;
};
