#pragma once

#include <cstdint>
#include <cstring>

/// The slave and its mask as row tables.
template <class PIXEL>
struct SLAVE_ROWS {
  const PIXEL* const* pixels;
  const unsigned char* const* mask;  ///< null when every pixel is valid
  int width;
  int height;

  /// Whether `count` pixels of a line from `sample` on are valid. Only with a mask.
  bool AreValid(std::int64_t line, std::int64_t sample, int count) const {
    return std::memchr(mask[line] + sample, 0, static_cast<std::size_t>(count)) == nullptr;
  }
};
