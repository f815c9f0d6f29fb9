#include "raster/image_bounds.h"

namespace {

/// last - first + 1
std::optional<std::int64_t> Extent(std::int64_t first, std::int64_t last) {
  std::int64_t extent = 0;
  if (__builtin_sub_overflow(last, first, &extent) || __builtin_add_overflow(extent, 1, &extent) ||
      extent < 0) {
    return std::nullopt;
  }
  return extent;
}

/// first + extent - 1
std::optional<std::int64_t> Last(std::int64_t first, std::int64_t extent) {
  std::int64_t last = 0;
  if (__builtin_add_overflow(extent - 1, first, &last)) {
    return std::nullopt;
  }
  return last;
}

}  // namespace

std::optional<std::int64_t> PixelBlockLength(const IMAGE_BOUNDS& bounds, int bytes_per_pixel) {
  const auto width = Extent(bounds.first_column, bounds.last_column);
  const auto height = Extent(bounds.first_row, bounds.last_row);
  std::int64_t length = 0;
  if (!width || !height || __builtin_mul_overflow(*width, *height, &length) ||
      __builtin_mul_overflow(length, bytes_per_pixel, &length)) {
    return std::nullopt;
  }
  return length;
}

std::optional<IMAGE_BOUNDS> Rebased(const IMAGE_BOUNDS& bounds, std::int64_t first_column,
                                    std::int64_t first_row) {
  const auto last_column = Last(first_column, bounds.Width());
  const auto last_row = Last(first_row, bounds.Height());
  if (!last_column || !last_row) {
    return std::nullopt;
  }
  return IMAGE_BOUNDS{first_column, first_row, *last_column, *last_row};
}
