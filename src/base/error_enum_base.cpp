#include "base/error_enum_base.h"

#include <string>

namespace BASIC::TYPES {

namespace {

STRING ComposeMessage(const STRING& value, const STRING& class_name) {
  const std::string message = std::string("enumeration data type - invalid value of class ") +
                              class_name.Text() + ": " + value.Text();
  return STRING(message.c_str());
}

}  // namespace

ERROR_ENUM_BASE_INVALID_VALUE::ERROR_ENUM_BASE_INVALID_VALUE(const STRING& value,
                                                             const STRING& class_name,
                                                             const STRING& valid_values)
    : value_(value),
      class_name_(class_name),
      valid_values_(valid_values),
      message_(ComposeMessage(value, class_name)) {}

void ERROR_ENUM_BASE_INVALID_VALUE::Throw(const STRING& value, const STRING& class_name,
                                          const STRING& valid_values) {
  static ERROR_ENUM_BASE_INVALID_VALUE scratch("", "", "");
  std::unique_lock lock(ScratchMutex());
  scratch = ERROR_ENUM_BASE_INVALID_VALUE(value, class_name, valid_values);
  const ERROR_ENUM_BASE_INVALID_VALUE thrown = scratch;
  // The handler takes the same mutex, so it is free before the error travels.
  lock.unlock();
  // A copy on purpose: the scratch error is shared.
  // NOLINTNEXTLINE(cert-err09-cpp,cert-err60-cpp,cert-err61-cpp)
  throw thrown;
}

std::mutex& ERROR_ENUM_BASE_INVALID_VALUE::ScratchMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace BASIC::TYPES
