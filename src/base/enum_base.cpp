#include "base/enum_base.h"

#include <string>

namespace BASIC::TYPES {

bool ENUM_BASE::operator==(const ENUM_BASE& other) const {
  // A run-time name that begins with '*' is local to its translation unit and never matches.
  if (*typeid(*this).name() == '*' || typeid(*this) != typeid(other)) {
    throw ERROR_ENUM_BASE_TYPE_MISMATCH();
  }
  return id_ == other.id_;
}

bool ENUM_BASE::operator!=(const ENUM_BASE& other) const {
  return !(*this == other);
}

ENUM_BASE& ENUM_BASE::operator++() {
  if (id_ > Last()) {
    throw ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED();
  }
  Set(id_ + 1, true);
  return *this;
}

ENUM_BASE& ENUM_BASE::operator--() {
  if (id_ <= 0) {
    throw ERROR_ENUM_BASE_LIMIT_OF_ENUMERATION_EXPIRED();
  }
  Set(id_ - 1, true);
  return *this;
}

const ENUM_BASE& ENUM_BASE::operator++(int) {
  const int before = id_;
  ++*this;
  return Set(before, false);
}

const ENUM_BASE& ENUM_BASE::operator--(int) {
  const int before = id_;
  --*this;
  return Set(before, false);
}

bool EqualIgnoringCase(const STRING& a, const STRING& b) {
  STRING lower_a = a;
  STRING lower_b = b;
  lower_a.ToLower();
  lower_b.ToLower();
  return lower_a == lower_b;
}

STRING ListValidNames(std::span<const ENUM_ENTRY> entries) {
  std::string list = "Valid values are: ";
  for (std::size_t id = 1; id + 1 < entries.size(); ++id) {
    list += std::string("'") + entries[id].name + "' ";
  }
  return STRING(list.c_str());
}

}  // namespace BASIC::TYPES
