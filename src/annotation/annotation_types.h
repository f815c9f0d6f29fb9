#pragma once

#include "base/enum_base.h"

// The enumerations of a product's annotation.

namespace SAR {

/// Whether the frequency of the transmitted pulse rises or falls.
class ChirpType : public BASIC::TYPES::ENUMERATION<ChirpType> {
 public:
  ChirpType() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit ChirpType(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

/// The side of the flight direction to which the antenna looks.
class LookDirection : public BASIC::TYPES::ENUMERATION<LookDirection> {
 public:
  LookDirection() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit LookDirection(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

/// Whether the sensor crosses the equator northwards or southwards while it takes the image.
class OrbitDirection : public BASIC::TYPES::ENUMERATION<OrbitDirection> {
 public:
  OrbitDirection() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit OrbitDirection(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

/// Polarisation of the transmitted and, second letter, of the received wave.
class Polarisation : public BASIC::TYPES::ENUMERATION<Polarisation> {
 public:
  Polarisation() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit Polarisation(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

}  // namespace SAR

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

/// Where a product stands between its order and its archive.
class ProductStatus : public BASIC::TYPES::ENUMERATION<ProductStatus> {
 public:
  ProductStatus() = default;
  /// Throws ERROR_ENUM_BASE_INVALID_ID.
  explicit ProductStatus(int id) { Set(id); }

  static std::span<const BASIC::TYPES::ENUM_ENTRY> Entries();
};

}  // namespace ZARVO
