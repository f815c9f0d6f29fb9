#include "annotation/polarisation.h"

#include <array>

namespace SAR {

std::span<const BASIC::TYPES::ENUM_ENTRY> Polarisation::Entries() {
  static constexpr std::array<BASIC::TYPES::ENUM_ENTRY, 10> entries = {
      {{"-", 0, "-"},
       {"HH", 0, "horizontal transmitted, horizontal received"},
       {"HV", 0, "horizontal transmitted, vertical received"},
       {"VH", 0, "vertical transmitted, horizontal received"},
       {"VV", 0, "vertical transmitted, vertical received"},
       {"RH", 0, "right circular transmitted, horizontal received"},
       {"RV", 0, "right circular transmitted, vertical received"},
       {"LH", 0, "left circular transmitted, horizontal received"},
       {"LV", 0, "left circular transmitted, vertical received"},
       {"-", 0, "-"}}};
  return entries;
}

}  // namespace SAR
