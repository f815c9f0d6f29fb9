#include "app/error_report.h"

#include <mutex>
#include <string>

#include "base/error_enum_base.h"
#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;
using BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE;

void LogInvalidValue(const ERROR_ENUM_BASE_INVALID_VALUE& error) {
  Log() << ALARM << error.what() << "\n";
  std::string valid_values;
  {
    const std::lock_guard lock(ERROR_ENUM_BASE_INVALID_VALUE::ScratchMutex());
    valid_values = error.ValidValues().Text();
  }
  Log() << ALARM << valid_values << "\n";
}

}  // namespace

void LogCurrentException() noexcept {
  try {
    try {
      throw;
    } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
      LogInvalidValue(error);
    } catch (const ERROR_EXCEPTION& error) {
      Log() << ALARM << error.what() << "\n";
    } catch (const char* text) {
      Log() << ALARM << text << "\n";
    } catch (...) {
      Log() << ALARM << "program aborted due to FATAL ERROR\n";
    }
  } catch (...) {  // no memory to report with: the caller's end of the run still says so
  }
}
