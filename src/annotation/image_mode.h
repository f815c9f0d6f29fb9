#pragma once

#include "base/enum_base.h"

namespace ZARVO {

/// The imaging mode in which a product was acquired. `Value()` is 1 for the modes of the stripmap
/// kind, whose Doppler centroid has no systematic rate along azimuth, and 0 for all others.
class ImageMode : public BASIC::TYPES::ENUMERATION<ImageMode> {
 public:
  ImageMode() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit ImageMode(int id) { Set(id); }

  bool IsStripmap() const noexcept { return Value() == 1; }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

}  // namespace ZARVO
