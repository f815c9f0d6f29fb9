#include "mapping/mapping_format_type.h"

#include <array>

namespace BASIC::TYPES {

std::span<const ENUM_ENTRY> MappingFormatType::Entries() {
  static constexpr std::array<ENUM_ENTRY, 4> entries = {{{"-", 0, "-"},
                                                         {"matrix", 0, "Mapping matrix"},
                                                         {"polynomial", 0, "Mapping polynomial"},
                                                         {"-", 0, "-"}}};
  return entries;
}

}  // namespace BASIC::TYPES
