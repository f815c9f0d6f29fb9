#include "pool/pool_block_texts.h"

namespace {

using enum PoolValueType;

// The supervisor's tools search logs for these texts, so the names that are no type words and
// the deviating forms of some types stay as they are.

const char* NameInTexts(PoolValueType type) {
  switch (type) {
    case FLT_6_V:
      return "FLT_4_V";
    case FLT_15_V:
      return "FLT_8_V";
    case FLT_6_FLT_6_V:
      return "INT_FLT_6_FLT_6_V";
    case STR_M:
      return "STR_15_M";
    default:
      return PoolTypeWord(type);
  }
}

}  // namespace

std::string NoOpeningBraceText(PoolValueType type, std::string_view word) {
  switch (type) {
    case FLT_6_V:
    case FLT_15_V:
      return std::string(" << { expected for ") + NameInTexts(type);
    case FLT_15_FLT_15_V:
      return " << { expected for INT_FLT_15_FLT_15_V";
    default:
      return " << { expected instead of " + std::string(word) + " for " + NameInTexts(type);
  }
}

std::string NoClosingBraceText(PoolValueType type, std::string_view word) {
  switch (type) {
    case STR_V:
    case STR_STR_V:
      return std::string(" << ") + NameInTexts(type) + " length does not match entry count";
    case FLT_6_V:
    case FLT_15_V:
      return std::string(" << no } at end of ") + NameInTexts(type);
    case FLT_15_FLT_15_V:
      return " << } expected instead of " + std::string(word) + " for INT_FLT_15_FLT__V";
    default:
      return word.empty()
                 ? std::string(" << no } at end of ") + NameInTexts(type)
                 : " << } expected instead of " + std::string(word) + " for " + NameInTexts(type);
  }
}
