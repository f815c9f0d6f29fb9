#pragma once

#include "base/enum_base.h"

namespace SAR {

/// Whether the frequency of the transmitted pulse rises or falls.
class ChirpType : public BASIC::TYPES::ENUMERATION<ChirpType> {
 public:
  ChirpType() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit ChirpType(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

}  // namespace SAR
