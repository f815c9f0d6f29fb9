#pragma once

#include "base/enum_base.h"

namespace BASIC::TYPES {

/// How a coregistration mapping is given. The "-" entries at both ends stand for no mapping.
class MappingFormatType : public ENUMERATION<MappingFormatType> {
 public:
  /// The ids of the formats.
  enum FORMAT : int { MATRIX = 1, POLYNOMIAL = 2 };

  /// The word for the type in parameter pools.
  static constexpr const char* type_name = "mapping_format";

  MappingFormatType() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit MappingFormatType(int id) { Set(id); }

  /// Takes a name ("matrix") or a description ("Mapping matrix"), whatever its case.
  /// Throws ERROR_ENUM_BASE_INVALID_VALUE.
  void Assign(const char* text) override { AssignNameOrDescription(text); }

  static std::span<const ENUM_ENTRY> Entries();
};

}  // namespace BASIC::TYPES
