#pragma once

#include "base/enum_base.h"

namespace BASIC::TYPES {

/// The kind of a parameter pool file.
class PoolType : public ENUMERATION<PoolType> {
 public:
  PoolType() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit PoolType(int id) { Set(id); }

  static std::span<const ENUM_ENTRY> Entries();

  static const PoolType ppool;
  static const PoolType geocoding;
};

}  // namespace BASIC::TYPES
