#include "check_run/findings.h"

#include <map>
#include <string_view>
#include <utility>

#include "app/error_report.h"
#include "logging/logging.h"

using enum LOGGING_LEVEL_T;

namespace {

std::string_view WithoutNumberAtEnd(std::string_view text) {
  return text.substr(0, text.find_last_not_of("-.0123456789") + 1);
}

}  // namespace

FINDINGS::FINDINGS() {
  Log().SetScreenLevel(NO_MESSAGE);
  Log().SetReceiver([this](LOGGING_LEVEL_T level, std::string_view text) {
    if (level == ALARM) {
      alarms_.emplace_back(text);
    } else if (level == WARNING) {
      warnings_.emplace_back(text);
    }
  });
}

FINDINGS::~FINDINGS() {
  Log().SetReceiver({});
  Log().SetScreenLevel(ALARM);
}

bool FINDINGS::Take(const std::function<void()>& step) {
  alarms_.clear();
  try {
    step();
    return true;
  } catch (...) {
    LogCurrentException();
    failures_.push_back(std::exchange(alarms_, {}));
    return false;
  }
}

std::vector<std::string> FINDINGS::Warnings() const {
  std::map<std::string_view, int> counts;
  for (const std::string& warning : warnings_) {
    ++counts[WithoutNumberAtEnd(warning)];
  }
  std::vector<std::string> kinds;
  for (const std::string& warning : warnings_) {
    const int count = std::exchange(counts[WithoutNumberAtEnd(warning)], 0);
    if (count > 1) {
      kinds.push_back(warning + " (and " + std::to_string(count - 1) + " more of the kind)");
    } else if (count == 1) {
      kinds.push_back(warning);
    }
  }
  return kinds;
}
