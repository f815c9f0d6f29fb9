#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "base/aligned_values.h"
#include "core/fast/column_tracker.h"
#include "core/fast/prefetch.h"
#include "core/fast/row_functions.h"
#include "core/fast/slave_rows.h"

/// The lines of the slave that the runs of a strip read, decoded and with their validity, each of
/// them once a strip: a ring of rows through which the strip goes down.
template <class PIXEL>
class SLAVE_LINES {
 public:
  SLAVE_LINES(const SLAVE_ROWS<PIXEL>& slave, int length, const ROW_FUNCTIONS& functions,
              const PIXEL_FUNCTIONS<PIXEL>& pixel_functions)
      : slave_(slave),
        length_(length),
        width_(RoundedUp(COLUMN_TRACKER::most_samples_apart + group_columns + length + reserve)),
        decode_(pixel_functions.decode),
        filter_mask_(functions.filter_mask),
        pixels_(RowsFor(length + COLUMN_TRACKER::most_lines_apart), std::ptrdiff_t{2} * width_),
        valid_(RowsFor(length + COLUMN_TRACKER::most_lines_apart),
               slave.mask != nullptr ? width_ : 0) {}

  /// Brings in what is missing of a window.
  void Hold(const SLAVE_WINDOW& window) {
    if (window.first_sample < first_sample_ || window.end_sample > end_sample_) {
      MoveTo(window);
    }
    const bool is_elsewhere = window.first_line < first_line_ || window.first_line > end_line_;
    if (is_elsewhere || window.end_line - window.first_line > Capacity()) {
      Empty(window);
    }
    for (; end_line_ < window.end_line; ++end_line_) {
      Bring(end_line_);
    }
    first_line_ = std::max(first_line_, end_line_ - Capacity());
  }

  /// The real parts from a sample of a line on; imaginary parts lie `ImaginaryDistance` behind.
  RING_LINES<double> Pixels(std::int64_t line, std::int64_t sample) const {
    return {pixels_.Values() + (sample - first_sample_), 2 * std::ptrdiff_t{width_}, row_mask_,
            static_cast<unsigned>(line)};
  }
  std::ptrdiff_t ImaginaryDistance() const { return width_; }

  /// Whether any of the lines from this one on that are held has an invalid pixel.
  bool HaveInvalid(std::int64_t first_line) const { return last_invalid_line_ >= first_line; }
  /// 1 where `length` pixels from the sample on are valid, else 0.
  RING_LINES<unsigned char> Validity(std::int64_t line, std::int64_t sample) const {
    return {valid_.Values() + (sample - first_sample_), width_, row_mask_,
            static_cast<unsigned>(line)};
  }

 private:
  /// Samples on either side of a window that are brought in too, so that it can move.
  static constexpr int reserve = 12;

  static int RowsFor(int lines) {
    return static_cast<int>(std::bit_ceil(static_cast<unsigned>(lines)));
  }
  std::int64_t Capacity() const { return std::int64_t{row_mask_} + 1; }

  static constexpr int RoundedUp(int count) {
    return (count + group_columns - 1) / group_columns * group_columns;
  }

  /// Makes room for other samples. A window that has left those that are held by little will go on
  /// to move.
  void MoveTo(const SLAVE_WINDOW& window) {
    const std::int64_t distance = window.first_sample - first_sample_;
    const int margin = distance > -reserve && distance < reserve ? reserve / 3 : 0;
    first_sample_ = window.first_sample - margin;
    end_sample_ =
        first_sample_ + RoundedUp(static_cast<int>(window.end_sample - first_sample_) + margin);
    Empty(window);
  }

  /// Takes no more rows than the window needs, so that they stay in the nearest cache.
  void Empty(const SLAVE_WINDOW& window) {
    row_mask_ =
        static_cast<unsigned>(RowsFor(static_cast<int>(window.end_line - window.first_line))) - 1;
    first_line_ = end_line_ = window.first_line;
    last_invalid_line_ = -1;
  }

  /// Nothing is read outside the slave; what would lie there gets any value.
  void Bring(std::int64_t line) {
    const std::int64_t first = std::max<std::int64_t>(first_sample_, 0);
    const std::int64_t end = std::min<std::int64_t>(end_sample_, slave_.width);
    const int count = static_cast<int>(end - first);
    PrefetchAhead(line, first, end);
    double* re = pixels_.Values() + Row(line) * 2 * width_ + (first - first_sample_);
    decode_(slave_.pixels[line] + first, count, {re, re + width_});
    if (slave_.mask != nullptr) {
      BringValidity(line, first, count);
    }
  }

  void BringValidity(std::int64_t line, std::int64_t first, int count) {
    const unsigned char* mask = slave_.mask[line] + first;
    unsigned char* valid = valid_.Values() + Row(line) * width_ + (first - first_sample_);
    if (std::memchr(mask, 0, static_cast<std::size_t>(count)) == nullptr) {
      std::memset(valid, 1, static_cast<std::size_t>(count));
    } else {
      filter_mask_(mask, length_, count - length_ + 1, valid);
      last_invalid_line_ = std::max(last_invalid_line_, line);
    }
  }

  void PrefetchAhead(std::int64_t line, std::int64_t first, std::int64_t end) const {
    constexpr std::int64_t lines_ahead = 4;
    if (line + lines_ahead < slave_.height) {
      const PIXEL* pixels = slave_.pixels[line + lines_ahead];
      Prefetch(pixels + first, pixels + end);
      if (slave_.mask != nullptr) {
        const unsigned char* mask = slave_.mask[line + lines_ahead];
        Prefetch(mask + first, mask + end);
      }
    }
  }

  std::ptrdiff_t Row(std::int64_t line) const {
    return static_cast<std::ptrdiff_t>(static_cast<unsigned>(line) & row_mask_);
  }

  const SLAVE_ROWS<PIXEL> slave_;
  const int length_;
  const int width_;  ///< of a row
  const decltype(PIXEL_FUNCTIONS<PIXEL>::decode) decode_;
  const decltype(ROW_FUNCTIONS::filter_mask) filter_mask_;

  unsigned row_mask_ = 0;          ///< of the rows in use
  std::int64_t first_sample_ = 0;  ///< of all lines that are held
  std::int64_t end_sample_ = 0;
  std::int64_t first_line_ = 0;
  std::int64_t end_line_ = 0;
  std::int64_t last_invalid_line_ = -1;
  ALIGNED_VALUES<double> pixels_;  ///< a row: real parts, imaginary parts
  ALIGNED_VALUES<unsigned char> valid_;
};
