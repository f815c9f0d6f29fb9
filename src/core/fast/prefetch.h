#pragma once

#include <cstdint>

/// Asks for all cache lines of [begin, end) before they are read. Neighbouring lines of a raster
/// lie too far apart for the processor to foresee. The row function `prefetch_written` does it for
/// what is written.
inline void Prefetch(const void* begin, const void* end) {
  constexpr std::uintptr_t cache_line = 64;
  constexpr int first_level = 3;  // there are processors that ignore hints for the others
  const auto* byte = static_cast<const char*>(begin);
  byte -= reinterpret_cast<std::uintptr_t>(byte) % cache_line;
  for (; byte < end; byte += cache_line) {
    __builtin_prefetch(byte, 0, first_level);
  }
}
