#pragma once

#include <vector>

#include "core/core_variant.h"
#include "core/fast/row_functions.h"

/// A variant of the fast core and its row functions.
struct LEVEL {
  const CORE_VARIANT* variant;
  const ROW_FUNCTIONS* functions;
};

/// Those that the processor offers.
inline std::vector<LEVEL> SupportedLevels() {
  std::vector<LEVEL> levels;
  for (const CORE_VARIANT& variant : CoreVariants()) {
    if (variant.functions != nullptr && variant.is_supported()) {
      levels.push_back({&variant, variant.functions});
    }
  }
  return levels;
}
