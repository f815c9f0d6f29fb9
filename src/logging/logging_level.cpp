#include "logging/logging_level.h"

#include <array>

namespace {

struct LEVEL_TEXT {
  std::string_view name;
  const char* tag;
};

constexpr std::array<LEVEL_TEXT, 10> level_texts = {{{"NO_LEVEL", "LEV_?"},
                                                     {"TRACE", "TRACE"},
                                                     {"DEBUG", "DEBUG"},
                                                     {"PARAMETER", "PARAM"},
                                                     {"INFO", "INFO "},
                                                     {"QA_WARNING", "QA_WA"},
                                                     {"WARNING", "WARN "},
                                                     {"EXCEPTION", "EXCEP"},
                                                     {"ALARM", "ALARM"},
                                                     {"NO_MESSAGE", "NOMSG"}}};

}  // namespace

const char* LevelTag(LOGGING_LEVEL_T level) noexcept {
  const auto index = static_cast<std::size_t>(level);
  return index < level_texts.size() ? level_texts[index].tag : level_texts[0].tag;
}

const char* ScreenHighlight(LOGGING_LEVEL_T level) noexcept {
  switch (level) {
    case LOGGING_LEVEL_T::EXCEPTION:
      return "\033[1m";
    case LOGGING_LEVEL_T::ALARM:
      return "\033[7m";
    case LOGGING_LEVEL_T::WARNING:
      return "\033[4m";
    default:
      return "";
  }
}

const char* ScreenReset(LOGGING_LEVEL_T level) noexcept {
  return level > LOGGING_LEVEL_T::QA_WARNING ? "\033[0m" : "";
}

bool LevelFromName(std::string_view name, LOGGING_LEVEL_T& level) noexcept {
  constexpr auto first = static_cast<std::size_t>(LOGGING_LEVEL_T::TRACE);
  constexpr auto last = static_cast<std::size_t>(LOGGING_LEVEL_T::ALARM);
  for (std::size_t i = first; i <= last; ++i) {
    if (level_texts[i].name == name) {
      level = static_cast<LOGGING_LEVEL_T>(i);
      return true;
    }
  }
  return false;
}
