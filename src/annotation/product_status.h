#pragma once

#include "base/enum_base.h"

namespace ZARVO {

/// Where a product stands between its order and its archive.
class ProductStatus : public BASIC::TYPES::ENUMERATION<ProductStatus> {
 public:
  ProductStatus() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit ProductStatus(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

}  // namespace ZARVO
