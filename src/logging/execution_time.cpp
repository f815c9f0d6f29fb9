#include "logging/execution_time.h"

#include <array>

std::string ExecutionTime(std::time_t seconds) {
  struct UNIT {
    std::time_t seconds;
    const char* name;
  };
  constexpr std::array<UNIT, 4> units = {
      {{86400, " day(s)"}, {3600, " hour(s)"}, {60, " minute(s)"}, {1, " second(s)"}}};
  if (seconds < 1) {
    return " less than 1 second";
  }
  std::string text;
  for (const UNIT& unit : units) {
    if (const std::time_t count = seconds / unit.seconds; count != 0) {
      text += " " + std::to_string(count) + unit.name;
    }
    seconds %= unit.seconds;
  }
  return text;
}
