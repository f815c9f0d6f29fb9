#pragma once

#include <cstdint>
#include <optional>

/// The index range of an image, both ends included. By default it has no pixels.
struct IMAGE_BOUNDS {
  std::int64_t first_column = 0;
  std::int64_t first_row = 0;
  std::int64_t last_column = -1;
  std::int64_t last_row = -1;

  /// Meaningful only for bounds that `PixelBlockLength` accepts.
  std::int64_t Width() const noexcept { return last_column - first_column + 1; }
  std::int64_t Height() const noexcept { return last_row - first_row + 1; }
};

/// Width x height x bytes per pixel. Nothing when a side is negative or does not fit into 64 bits,
/// nor when the product does not.
std::optional<std::int64_t> PixelBlockLength(const IMAGE_BOUNDS& bounds, int bytes_per_pixel);

/// The same image counted from another first column and row; nothing when the last ones would not
/// fit into 64 bits.
std::optional<IMAGE_BOUNDS> Rebased(const IMAGE_BOUNDS& bounds, std::int64_t first_column,
                                    std::int64_t first_row);
