#include "pool/pool_value_type.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr const char* type_words[] = {"UNKNOWN",
                                      "BOL",
                                      "BYT",
                                      "INT_8",
                                      "INT_16",
                                      "INT_32",
                                      "INT_64",
                                      "FLT_6",
                                      "FLT_15",
                                      "STR",
                                      "CPL_6",
                                      "CPL_15",
                                      "INT_32_INT_32",
                                      "INT_64_INT_64",
                                      "FLT_6_FLT_6",
                                      "FLT_15_FLT_15",
                                      "IDX_INT_32",
                                      "IDX_FLT_6",
                                      "IDX_FLT_15",
                                      "STR_STR",
                                      "BOL_V",
                                      "BYT_V",
                                      "INT_8_V",
                                      "INT_16_V",
                                      "INT_32_V",
                                      "INT_64_V",
                                      "FLT_6_V",
                                      "FLT_15_V",
                                      "CPL_6_V",
                                      "CPL_15_V",
                                      "STR_V",
                                      "INT_32_INT_32_V",
                                      "INT_64_INT_64_V",
                                      "FLT_6_FLT_6_V",
                                      "FLT_15_FLT_15_V",
                                      "IDX_INT_32_V",
                                      "IDX_FLT_6_V",
                                      "IDX_FLT_15_V",
                                      "STR_STR_V",
                                      "BYT_M",
                                      "INT_8_M",
                                      "INT_16_M",
                                      "INT_32_M",
                                      "FLT_6_M",
                                      "FLT_15_M",
                                      "CPL_6_M",
                                      "CPL_15_M",
                                      "STR_M"};
static_assert(std::size(type_words) == pool_value_type_count);

}  // namespace

const char* PoolTypeWord(PoolValueType type) noexcept {
  return type_words[static_cast<std::size_t>(type)];
}

PoolValueType PoolTypeOfWord(std::string_view word) noexcept {
  const auto* const found = std::find(std::begin(type_words), std::end(type_words), word);
  return found == std::end(type_words) ? PoolValueType::UNKNOWN
                                       : static_cast<PoolValueType>(found - std::begin(type_words));
}
