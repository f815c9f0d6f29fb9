#pragma once

#include "base/enum_base.h"

namespace BASIC::TYPES {

/// The type of a value or of a pixel. `Value()` is its size in bytes. Integers are named by
/// bits, floating point by decimal digits; "c_" marks a complex pair.
class DataType : public ENUMERATION<DataType> {
 public:
  DataType() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit DataType(int id) { Set(id); }

  static std::span<const ENUM_ENTRY> Entries();
};

}  // namespace BASIC::TYPES
