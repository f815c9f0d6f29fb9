#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// FNV-1a of 64 bits, as text: tells whether a content has changed, not who made it.
inline std::string ContentHash(std::string_view content) {
  constexpr std::uint64_t prime = 0x100000001b3;
  std::uint64_t value = 0xcbf29ce484222325;
  for (const char c : content) {
    value = (value ^ static_cast<unsigned char>(c)) * prime;
  }
  return std::to_string(value);
}
