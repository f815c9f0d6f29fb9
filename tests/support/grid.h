#pragma once

#include <cstddef>
#include <vector>

/// A two-dimensional array, row by row.
template <class T>
struct GRID {
  int width = 0;
  int height = 0;
  std::vector<T> values;

  GRID() = default;
  GRID(int new_width, int new_height, T fill = T())
      : width(new_width),
        height(new_height),
        values(static_cast<std::size_t>(new_width) * static_cast<std::size_t>(new_height), fill) {}

  T& At(int column, int line) { return values[Position(column, line)]; }
  const T& At(int column, int line) const { return values[Position(column, line)]; }

 private:
  std::size_t Position(int column, int line) const {
    return static_cast<std::size_t>(line) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(column);
  }
};
