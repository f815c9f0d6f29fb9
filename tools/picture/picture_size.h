#pragma once

#include <cstdint>
#include <optional>

#include "common/range_azimuth.h"

/// Wanted size of an image in picture pixels.
struct PICTURE_SIZE {
  std::optional<int> width;
  std::optional<int> height;
  /// Samples and lines, at least, of a cell, which is shown as a square.
  std::optional<RANGE_AZIMUTH<int>> looks = std::nullopt;
};

struct SIZE {
  int width;
  int height;
};

/// Limit of a picture's width and height.
inline constexpr int largest_picture = 10000;

/// The size that an image of samples x lines is shown at. A missing length follows from the
/// other one so that image pixels, or cells of looks, are squares; with none the longer side
/// becomes 800, or for smaller images the largest multiple up to it, so that all their pixels look
/// the same.
SIZE ShownSize(std::int64_t samples, std::int64_t lines, const PICTURE_SIZE& wanted);

/// Cells along an axis of a picture: as many as it has pixels, if there are `box` image pixels
/// for each of them, at least 1.
int CellCount(int length, std::int64_t pixels, int box);
