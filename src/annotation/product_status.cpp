#include "annotation/product_status.h"

#include <array>

namespace ZARVO {

std::span<const BASIC::TYPES::ENUM_ENTRY> ProductStatus::Entries() {
  static constexpr std::array<BASIC::TYPES::ENUM_ENTRY, 10> entries = {
      {{"-", 0, "-"},
       {"POTENTIAL", 0, "acquisition is possible"},
       {"PLANNED", 0, "acquisition is planned"},
       {"ACQUIRED", 0, "acquired, not processed"},
       {"CANCELED", 0, "acquisition was given up"},
       {"FAILED", 0, "acquisition or processing failed"},
       {"ARCHIVED", 0, "processed and archived"},
       {"QUALITYDEGRADED", 0, "archived with degraded quality"},
       {"REJECTED", 0, "refused by quality control"},
       {"-", 0, "-"}}};
  return entries;
}

}  // namespace ZARVO
