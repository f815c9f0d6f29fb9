#pragma once

#include <cstddef>
#include <vector>

/// Cells in columns and rows, row after row.
template <class CELL>
class CELL_GRID {
 public:
  CELL_GRID(int columns, int rows)
      : columns_(columns),
        rows_(rows),
        cells_(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

  int Columns() const noexcept { return columns_; }
  int Rows() const noexcept { return rows_; }

  CELL& At(int column, int row) noexcept { return cells_[Position(column, row)]; }
  const CELL& At(int column, int row) const noexcept { return cells_[Position(column, row)]; }

  std::vector<CELL>& Cells() noexcept { return cells_; }
  const std::vector<CELL>& Cells() const noexcept { return cells_; }

 private:
  std::size_t Position(int column, int row) const noexcept {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }

  int columns_;
  int rows_;
  std::vector<CELL> cells_;
};
