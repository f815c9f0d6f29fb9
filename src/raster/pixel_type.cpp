#include "raster/pixel_type.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace {

struct PIXEL_TYPE_TRAITS {
  const char* data_type;
  int bytes_per_pixel;
  std::uint32_t type_word;
};

/// The row number is the pixel type.
constexpr std::array<PIXEL_TYPE_TRAITS, 13> traits = {{{"others", 0, 0},
                                                       {"u_int_8", 1, 1},
                                                       {"int_16", 2, 1},
                                                       {"int_32", 4, 1},
                                                       {"flt_2", 2, 93},
                                                       {"flt_6", 4, 99},
                                                       {"flt_15", 8, 98},
                                                       {"c_u_int_8", 2, 94},
                                                       {"c_int_16", 4, 97},
                                                       {"c_flt_2", 4, 92},
                                                       {"c_flt_6", 8, 96},
                                                       {"c_flt_15", 16, 95},
                                                       {"rgb", 3, 3}}};

const PIXEL_TYPE_TRAITS& TraitsOf(PIXEL_TYPE type) noexcept {
  const auto row = static_cast<std::size_t>(type);
  return traits[row < traits.size() ? row : 0];
}

constexpr std::uint32_t standard_type = 1;

/// The types that hold plain integers and tell their width by the depth alone.
PIXEL_TYPE IntegerOfDepth(std::uint32_t type_word, std::uint32_t depth) noexcept {
  switch (depth >> 3) {
    case 1:
      return PIXEL_TYPE::U_INT_8;
    case 2:
      return PIXEL_TYPE::INT_16;
    case 4:
      return type_word == standard_type ? PIXEL_TYPE::INT_32 : PIXEL_TYPE::OTHERS;
    default:
      return PIXEL_TYPE::OTHERS;
  }
}

}  // namespace

int BytesPerPixel(PIXEL_TYPE type) noexcept {
  return TraitsOf(type).bytes_per_pixel;
}

std::uint32_t TypeWord(PIXEL_TYPE type) noexcept {
  return TraitsOf(type).type_word;
}

PIXEL_TYPE PixelTypeFromWords(std::uint32_t type_word, std::uint32_t depth) noexcept {
  switch (type_word) {
    case standard_type:
    case 100:
    case 101:
    case 102:
    case 103:
      return IntegerOfDepth(type_word, depth);
    case 3:
      return PIXEL_TYPE::RGB;
    case 92:
      return PIXEL_TYPE::C_FLT_2;
    case 93:
      return PIXEL_TYPE::FLT_2;
    case 94:
      return PIXEL_TYPE::C_U_INT_8;
    case 95:
      return PIXEL_TYPE::C_FLT_15;
    case 96:
      return PIXEL_TYPE::C_FLT_6;
    case 97:
      return PIXEL_TYPE::C_INT_16;
    case 98:
      return PIXEL_TYPE::FLT_15;
    case 99:
    case 199:  // older codes of real pixels
    case 200:
      return PIXEL_TYPE::FLT_6;
    default:
      return PIXEL_TYPE::OTHERS;
  }
}

BASIC::TYPES::DataType DataTypeOf(PIXEL_TYPE type) {
  BASIC::TYPES::DataType data_type;
  data_type.Assign(TraitsOf(type).data_type);
  return data_type;
}

PIXEL_TYPE PixelTypeOf(const BASIC::TYPES::DataType& type) noexcept {
  for (std::size_t code = 0; code < traits.size(); ++code) {
    if (std::string_view(traits[code].data_type) == type.Name()) {
      return static_cast<PIXEL_TYPE>(code);
    }
  }
  return PIXEL_TYPE::OTHERS;
}
