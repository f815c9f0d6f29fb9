#pragma once

#include <mutex>

#include "base/error_exception.h"
#include "base/string.h"

namespace BASIC::TYPES {

/// Root of the failures of enumeration values.
class ERROR_ENUM_BASE : public ERROR_EXCEPTION {
 public:
  const char* what() const noexcept override { return "enumeration data type error"; }
};

/// Two values of different enumeration classes were compared.
class ERROR_ENUM_BASE_TYPE_MISMATCH : public ERROR_ENUM_BASE {
 public:
  const char* what() const noexcept override { return "enumeration data type - type mismatch"; }
};

/// A value was stepped past the first or the last entry.
class ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED : public ERROR_ENUM_BASE {
 public:
  const char* what() const noexcept override {
    return "enumeration data type - limit of enumeration expired";
  }
};

/// An integer id lies outside the table.
class ERROR_ENUM_BASE_INVALID_ID : public ERROR_ENUM_BASE {
 public:
  const char* what() const noexcept override { return "enumeration data type - invalid id"; }
};

/// A text names no entry. The only error with data: the text, the enumeration's run-time class
/// name, and the list of names that would have been valid.
class ERROR_ENUM_BASE_INVALID_VALUE : public ERROR_ENUM_BASE {
 public:
  ERROR_ENUM_BASE_INVALID_VALUE(const STRING& value, const STRING& class_name,
                                const STRING& valid_values);

  /// "enumeration data type - invalid value of class <class name>: <value>"
  const char* what() const noexcept override { return message_.Text(); }
  /// "Valid values are: 'first' 'second' ..."
  const STRING& ValidValues() const noexcept { return valid_values_; }

  /// Throws this error, putting it together in the process-wide scratch record under its mutex.
  [[noreturn]] static void Throw(const STRING& value, const STRING& class_name,
                                 const STRING& valid_values);
  /// The mutex of the scratch record; also held by a handler that copies the second text.
  static std::mutex& ScratchMutex();

 private:
  STRING value_;
  STRING class_name_;
  STRING valid_values_;
  STRING message_;
};

}  // namespace BASIC::TYPES
