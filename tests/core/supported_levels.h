#pragma once

#include <vector>

#include "core/core_variant.h"
#include "core/fast/row_function_variants.h"

/// A variant of the fast core and its row functions.
struct LEVEL {
  const CORE_VARIANT* variant;
  const ROW_FUNCTIONS* functions;
};

/// Those that the processor offers.
inline std::vector<LEVEL> SupportedLevels() {
  const ROW_FUNCTIONS* const functions[] = {&row_functions_x86_64, &row_functions_x86_64_v3,
                                            &row_functions_x86_64_v4};
  std::vector<LEVEL> levels;
  for (std::size_t i = 0; i < std::size(functions); ++i) {
    const CORE_VARIANT& variant = CoreVariants()[i + 1];
    if (variant.is_supported()) {
      levels.push_back({&variant, functions[i]});
    }
  }
  return levels;
}
