#pragma once

#include "base/enum_base.h"

namespace SAR {

/// The side of the flight direction to which the antenna looks.
class LookDirection : public BASIC::TYPES::ENUMERATION<LookDirection> {
 public:
  LookDirection() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit LookDirection(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

}  // namespace SAR
