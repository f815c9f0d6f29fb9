#pragma once

#include "base/enum_base.h"

namespace SAR {

/// Whether the sensor crosses the equator northwards or southwards while it takes the image.
class OrbitDirection : public BASIC::TYPES::ENUMERATION<OrbitDirection> {
 public:
  OrbitDirection() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit OrbitDirection(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

}  // namespace SAR
