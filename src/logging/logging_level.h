#pragma once

#include <string_view>

/// The levels of a log message, in rising order of weight. `NO_LEVEL` is the unset level;
/// `NO_MESSAGE` is a threshold only: it silences the screen, and nothing is logged at it.
enum class LOGGING_LEVEL_T : int {
  NO_LEVEL = 0,
  TRACE = 1,
  DEBUG = 2,
  PARAMETER = 3,
  INFO = 4,
  QA_WARNING = 5,
  WARNING = 6,
  EXCEPTION = 7,
  ALARM = 8,
  NO_MESSAGE = 9
};

/// Five characters that begin every line of the level ("TRACE", "INFO ", "ALARM", ...).
const char* LevelTag(LOGGING_LEVEL_T level) noexcept;

/// ANSI escapes around a line of the level on the screen: bold, reverse video or underline before
/// it and a reset behind it, both empty up to QA_WARNING.
const char* ScreenHighlight(LOGGING_LEVEL_T level) noexcept;
const char* ScreenReset(LOGGING_LEVEL_T level) noexcept;

/// Looks a level up by its name, "TRACE" to "ALARM", exactly and case-sensitively.
/// Returns false and leaves `level` unchanged when the name is none of the eight.
bool LevelFromName(std::string_view name, LOGGING_LEVEL_T& level) noexcept;
