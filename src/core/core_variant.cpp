#include "core/core_variant.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "core/fast/fast_core.h"
#include "core/fast/row_function_variants.h"
#include "core/resampling_core.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

bool IsAlwaysSupported() {
  return true;
}

#if defined(__x86_64__)

// What the row functions of each level are compiled for, and not the whole level: only some
// compilers know the levels by name.

bool HasFeaturesOfV3() {
  return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0 &&
         __builtin_cpu_supports("bmi2") != 0 && __builtin_cpu_supports("popcnt") != 0;
}

bool HasFeaturesOfV4() {
  return HasFeaturesOfV3() && __builtin_cpu_supports("avx512f") != 0 &&
         __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512dq") != 0 &&
         __builtin_cpu_supports("avx512vl") != 0;
}

#endif

constexpr CORE_VARIANT variants[] = {
    {"plain", IsAlwaysSupported, nullptr},
#if defined(__x86_64__)
    {"x86-64", IsAlwaysSupported, &row_functions_x86_64},
    {"x86-64-v3", HasFeaturesOfV3, &row_functions_x86_64_v3},
    {"x86-64-v4", HasFeaturesOfV4, &row_functions_x86_64_v4},
#elif defined(__aarch64__)
    {"aarch64", IsAlwaysSupported, &row_functions_aarch64},
#endif
};

const CORE_VARIANT& FastestVariant() {
  const CORE_VARIANT* fastest = variants;
  for (const CORE_VARIANT& variant : variants) {
    fastest = variant.is_supported() ? &variant : fastest;
  }
  return *fastest;
}

/// Null when the environment names none, or none that can be had.
const CORE_VARIANT* VariantFromEnvironment() {
  const char* wanted = std::getenv("RESAMPLE_SIMD");
  if (wanted == nullptr) {
    return nullptr;
  }
  const auto* variant = std::ranges::find(variants, std::string_view(wanted), &CORE_VARIANT::name);
  if (variant == std::end(variants)) {
    Log() << WARNING << "RESAMPLE_SIMD is not known: " << wanted;
    return nullptr;
  }
  if (!variant->is_supported()) {
    Log() << WARNING << "RESAMPLE_SIMD is not supported by this processor: " << wanted;
    return nullptr;
  }
  return variant;
}

}  // namespace

void CORE_VARIANT::Resample(const RESAMPLE_THR_ARG& argument) const {
  if (functions != nullptr) {
    ResampleBlockFast(argument, *functions);
  } else {
    ResampleBlock(argument);
  }
}

std::span<const CORE_VARIANT> CoreVariants() {
  return variants;
}

const CORE_VARIANT& ChooseCoreVariant() {
  const CORE_VARIANT* wanted = VariantFromEnvironment();
  const CORE_VARIANT& chosen = wanted != nullptr ? *wanted : FastestVariant();
  Log() << DEBUG << "core: " << chosen.name;
  return chosen;
}
