#include "annotation/orbit_direction.h"

#include <array>

namespace SAR {

std::span<const BASIC::TYPES::ENUM_ENTRY> OrbitDirection::Entries() {
  static constexpr std::array<BASIC::TYPES::ENUM_ENTRY, 4> entries = {
      {{"-", 0, "-"},
       {"ASCENDING", 0, "northwards"},
       {"DESCENDING", 0, "southwards"},
       {"-", 0, "-"}}};
  return entries;
}

}  // namespace SAR
