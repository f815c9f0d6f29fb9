#pragma once

#include <cstdint>

#include "base/data_type.h"

/// The pixel types of a raster. Named as the `DataType` of the pixel: integers by bits, floating
/// point by decimal digits (2: binary16, 6: binary32, 15: binary64), "C_" for a pair of real and
/// imaginary part. The numbers are the codes that logs show.
enum class PIXEL_TYPE : int {
  OTHERS = 0,  ///< everything that is no raster pixel; never held, never created
  U_INT_8 = 1,
  INT_16 = 2,
  INT_32 = 3,
  FLT_2 = 4,
  FLT_6 = 5,
  FLT_15 = 6,
  C_U_INT_8 = 7,
  C_INT_16 = 8,
  C_FLT_2 = 9,
  C_FLT_6 = 10,
  C_FLT_15 = 11,
  RGB = 12,
};

/// Size of a pixel in bytes: 1, 2, 3, 4, 8 or 16. 0 for `OTHERS` and for values that are none of
/// the pixel types.
int BytesPerPixel(PIXEL_TYPE type) noexcept;

/// The type word that a new raster file of this pixel type carries; 0 for `OTHERS`.
std::uint32_t TypeWord(PIXEL_TYPE type) noexcept;

/// The pixel type that a raster header's type and depth word declare, `OTHERS` when there is none.
/// The depth [bits] matters only where several pixel types share a type word.
PIXEL_TYPE PixelTypeFromWords(std::uint32_t type_word, std::uint32_t depth) noexcept;

/// "others" for `OTHERS`. Throws ERROR_NO_MEMORY.
BASIC::TYPES::DataType DataTypeOf(PIXEL_TYPE type);

/// `OTHERS` for a data type that is no pixel type.
PIXEL_TYPE PixelTypeOf(const BASIC::TYPES::DataType& type) noexcept;
