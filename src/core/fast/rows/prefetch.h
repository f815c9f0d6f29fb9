#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

#include <cstdint>

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

/// Stores go to the cache in order: one that waits for its line holds up all later ones.
void PrefetchWritten(const void* begin, const void* end) {
  constexpr std::uintptr_t cache_line = 64;
  constexpr int first_level = 3;
  const auto* byte = static_cast<const char*>(begin);
  byte -= reinterpret_cast<std::uintptr_t>(byte) % cache_line;
  for (; byte < end; byte += cache_line) {
    __builtin_prefetch(byte, 1, first_level);
  }
}

}  // namespace
