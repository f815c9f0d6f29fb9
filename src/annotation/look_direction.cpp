#include "annotation/look_direction.h"

#include <array>

namespace SAR {

std::span<const BASIC::TYPES::ENUM_ENTRY> LookDirection::Entries() {
  static constexpr std::array<BASIC::TYPES::ENUM_ENTRY, 4> entries = {
      {{"-", 0, "-"},
       {"LEFT", 0, "left of the flight direction"},
       {"RIGHT", 0, "right of the flight direction"},
       {"-", 0, "-"}}};
  return entries;
}

}  // namespace SAR
