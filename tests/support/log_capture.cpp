#include "support/log_capture.h"

#include <algorithm>
#include <sstream>

LOG_CAPTURE::LOG_CAPTURE(LOGGING_LEVEL_T level) {
  Log().Open(directory_.File("log"));
  Log().SetScreenLevel(LOGGING_LEVEL_T::NO_MESSAGE);
  Log().SetFileLevel(level);
}

LOG_CAPTURE::~LOG_CAPTURE() {
  Log().Open("/dev/null");
  Log().SetScreenLevel(LOGGING_LEVEL_T::ALARM);
  Log().SetFileLevel(LOGGING_LEVEL_T::ALARM);
}

std::string LOG_CAPTURE::Text() const {
  return ReadFile(directory_.File("log"));
}

std::vector<std::string> LOG_CAPTURE::Lines() const {
  std::vector<std::string> lines;
  std::istringstream text(Text());
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

bool LOG_CAPTURE::Has(std::string_view line) const {
  const std::vector<std::string> lines = Lines();
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}
