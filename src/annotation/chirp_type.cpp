#include "annotation/chirp_type.h"

#include <array>

namespace SAR {

std::span<const BASIC::TYPES::ENUM_ENTRY> ChirpType::Entries() {
  static constexpr std::array<BASIC::TYPES::ENUM_ENTRY, 4> entries = {
      {{"-", 0, "-"},
       {"UP", 0, "rising frequency"},
       {"DOWN", 0, "falling frequency"},
       {"-", 0, "-"}}};
  return entries;
}

}  // namespace SAR
