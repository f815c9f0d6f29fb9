#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>

#include "base/array.h"
#include "base/error_exception.h"
#include "logging/logging.h"

/// A two-dimensional array in one row-major block without padding, with row-pointer tables for
/// m[row][column] access from any index origin.
template <class T>
class MATRIX {
 public:
  MATRIX() = default;
  MATRIX(const MATRIX& other) { CopyFrom(other); }
  MATRIX& operator=(const MATRIX& other) {
    if (this != &other) {
      Free();
      CopyFrom(other);
    }
    return *this;
  }
  virtual ~MATRIX() { MATRIX::Free(); }

  /// Replaces the content by default elements. Results as of `ARRAY::Create`.
  unsigned Create(const RANGE<int>& rows, const RANGE<int>& columns) {
    if (rows.Count() < 0 || columns.Count() < 0) {
      return CONTAINER_NEGATIVE_COUNT;
    }
    MATRIX::Free();
    rows_ = rows;
    columns_ = columns;
    const std::size_t count = ElementCount();
    if (count == 0) {
      return CONTAINER_OK;
    }
    // A size in bytes beyond std::size_t would make even the non-throwing new throw.
    if (count <= std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T)) {
      storage_.reset(new (std::nothrow) T[count]());
    }
    return storage_ ? CONTAINER_OK : CONTAINER_NO_MEMORY;
  }

  /// Releases the elements and every row table.
  virtual void Free() noexcept {
    storage_.reset();
    POINTER_VECTOR_LINK_T* links = links_.Origin();
    for (int i = 0; i < links_.Size(); ++i) {
      delete[] links[i].table;
    }
    links_.Free();
    rows_ = RANGE<int>();
    columns_ = RANGE<int>();
  }

  /// False where there are no elements, or no memory was found for them: the ranges stay then.
  bool HasStorage() const noexcept { return storage_ != nullptr; }

  RANGE<int> Rows() const { return rows_; }
  RANGE<int> Columns() const { return columns_; }

  /// The row-pointer table for the matrix's own ranges: table[row][column]. It is built on the
  /// first call, kept, and lives as long as the storage. Throws ERROR_NO_MEMORY.
  T** GetNumRecMatrix() { return ShiftOrigin(RowTable(columns_.First()), rows_.First()); }

  /// The element of the given row and column index.
  const T& At(int row, int column) const noexcept {
    const auto line = static_cast<std::size_t>(row - rows_.First());
    const auto position = static_cast<std::size_t>(column - columns_.First());
    return storage_[line * static_cast<std::size_t>(columns_.Count()) + position];
  }

  /// A row-pointer table and the column origin that it was built for.
  struct POINTER_VECTOR_LINK_T {
    int column_origin = 0;
    T** table = nullptr;
  };

 private:
  std::size_t ElementCount() const noexcept {
    return static_cast<std::size_t>(rows_.Count()) * static_cast<std::size_t>(columns_.Count());
  }

  T** RowTable(int column_origin) {
    const POINTER_VECTOR_LINK_T* links = links_.Origin();
    for (int i = 0; i < links_.Size(); ++i) {
      if (links[i].column_origin == column_origin) {
        return links[i].table;
      }
    }
    return AddRowTable(column_origin);
  }

  T** AddRowTable(int column_origin) {
    if (!HasStorage() && ElementCount() > 0) {
      RefuseForMemory("the elements");
    }
    const auto row_count = static_cast<std::size_t>(rows_.Count());
    const auto column_count = static_cast<std::size_t>(columns_.Count());
    std::unique_ptr<T*[]> table(new (std::nothrow) T*[row_count]);
    if (!table || links_.Resize(RANGE<int>(0, links_.Size() + 1)) != CONTAINER_OK) {
      RefuseForMemory("the row table");
    }
    for (std::size_t row = 0; row < row_count; ++row) {
      table[row] = ShiftOrigin(storage_.get() + row * column_count, column_origin);
    }
    links_.Origin()[links_.Last()] = {column_origin, table.get()};
    return table.release();
  }

  [[noreturn]] static void RefuseForMemory(const char* use) {
    Log() << LOGGING_LEVEL_T::ALARM << "MATRIX: no memory for " << use << "\n";
    throw ERROR_NO_MEMORY();
  }

  void CopyFrom(const MATRIX& other) {
    if (Create(other.rows_, other.columns_) != CONTAINER_OK) {
      RefuseForMemory("a copy");
    }
    if (other.storage_) {
      std::copy_n(other.storage_.get(), ElementCount(), storage_.get());
    }
  }

  RANGE<int> columns_;
  RANGE<int> rows_;
  std::unique_ptr<T[]> storage_;
  ARRAY<POINTER_VECTOR_LINK_T> links_;
};
