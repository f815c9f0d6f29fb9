#pragma once

#include <cstddef>
#include <memory>
#include <new>

#include "core/fast/row_functions.h"

/// Zero-initialised rows of `strip_columns` values each, aligned to cache lines.
template <class T>
class ROW_BUFFER {
 public:
  explicit ROW_BUFFER(int rows)
      : values_(new (alignment) T[static_cast<std::size_t>(rows) * strip_columns]{}) {}

  T* Row(int row) { return values_.get() + std::ptrdiff_t{row} * strip_columns; }

  /// Puts `count` values into column x, from row 0 on.
  void FillColumn(int x, const T* values, int count) {
    T* to = Row(0) + x;
#pragma GCC unroll 8
    for (int i = 0; i < count; ++i) {
      to[std::ptrdiff_t{i} * strip_columns] = values[i];
    }
  }

  /// Copies `count` values of column x to other rows.
  void CopyColumn(int x, int from_row, int to_row, int count) {
    const T* from = Row(from_row) + x;
    T* to = Row(to_row) + x;
#pragma GCC unroll 8
    for (int i = 0; i < count; ++i) {
      const std::ptrdiff_t offset = std::ptrdiff_t{i} * strip_columns;
      to[offset] = from[offset];
    }
  }

 private:
  static constexpr std::align_val_t alignment{64};

  struct RELEASE {
    void operator()(T* values) const { ::operator delete[](values, alignment); }
  };
  std::unique_ptr<T[], RELEASE> values_;
};
