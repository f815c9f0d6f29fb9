#pragma once

#include "base/enum_base.h"

namespace SAR {

/// Polarisation of the transmitted and, second letter, of the received wave.
class Polarisation : public BASIC::TYPES::ENUMERATION<Polarisation> {
 public:
  Polarisation() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit Polarisation(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

}  // namespace SAR
