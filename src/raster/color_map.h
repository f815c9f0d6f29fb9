#pragma once

#include <cstddef>
#include <cstdint>

/// A colour map: entry i is (red[i], green[i], blue[i]). The planes are borrowed; without entries
/// there is no map.
struct COLOR_MAP {
  const unsigned char* red = nullptr;
  const unsigned char* green = nullptr;
  const unsigned char* blue = nullptr;
  std::uint32_t entries = 0;

  /// A map whose planes lie one after another, red first.
  static COLOR_MAP FromPlanes(const unsigned char* planes, std::uint32_t entries) noexcept {
    return {planes, planes + entries, planes + std::size_t{2} * entries, entries};
  }
};
