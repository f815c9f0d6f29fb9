#include "check_run/findings.h"

#include <utility>

#include "app/error_report.h"
#include "logging/logging.h"

using enum LOGGING_LEVEL_T;

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

bool FINDINGS::Take(const STEP& step) const {
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
