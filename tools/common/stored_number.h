#pragma once

#include <cstdint>
#include <stdexcept>

#include "common/binary16.h"
#include "raster/pixel_type.h"

/// A number of a pixel as binary16.
struct BINARY_16 {
  std::uint16_t bits;
  explicit operator double() const noexcept { return Binary16ToDouble(bits); }
};

/// Calls `visit` with an object of the C++ type whose values pixels of a type hold, one a pixel or
/// two a pair, and returns what it returns: fixed-width integers, BINARY_16, float or double.
/// Throws std::invalid_argument for types that hold no numbers.
template <class VISIT>
auto VisitStoredNumber(PIXEL_TYPE type, const VISIT& visit) {
  switch (type) {
    case PIXEL_TYPE::U_INT_8:
    case PIXEL_TYPE::C_U_INT_8:
      return visit(std::uint8_t{});
    case PIXEL_TYPE::INT_16:
    case PIXEL_TYPE::C_INT_16:
      return visit(std::int16_t{});
    case PIXEL_TYPE::INT_32:
      return visit(std::int32_t{});
    case PIXEL_TYPE::FLT_2:
    case PIXEL_TYPE::C_FLT_2:
      return visit(BINARY_16{});
    case PIXEL_TYPE::FLT_6:
    case PIXEL_TYPE::C_FLT_6:
      return visit(float{});
    case PIXEL_TYPE::FLT_15:
    case PIXEL_TYPE::C_FLT_15:
      return visit(double{});
    default:
      throw std::invalid_argument("pixels of this type hold no numbers");
  }
}
