#include "gdal/gdal_types.h"

#include <map>
#include <stdexcept>

GDAL_LAYOUT GdalLayoutOf(PIXEL_TYPE type) {
  switch (type) {
    case PIXEL_TYPE::U_INT_8:
      return {"Byte", 1};
    case PIXEL_TYPE::INT_16:
      return {"Int16", 1};
    case PIXEL_TYPE::INT_32:
      return {"Int32", 1};
    case PIXEL_TYPE::FLT_6:
      return {"Float32", 1};
    case PIXEL_TYPE::FLT_15:
      return {"Float64", 1};
    case PIXEL_TYPE::C_U_INT_8:
      return {"Byte", 2};
    case PIXEL_TYPE::C_INT_16:
      return {"CInt16", 1};
    case PIXEL_TYPE::C_FLT_6:
      return {"CFloat32", 1};
    case PIXEL_TYPE::C_FLT_15:
      return {"CFloat64", 1};
    case PIXEL_TYPE::RGB:
      return {"Byte", 3};
    default:
      throw std::invalid_argument(
          "GDAL before 3.11 has no type for binary16 pixels; slctool export copies them as "
          "Float32 or CFloat32");
  }
}

PIXEL_TYPE PixelTypeForGdal(const std::string& data_type) {
  static const std::map<std::string, PIXEL_TYPE> types = {
      {"Byte", PIXEL_TYPE::U_INT_8},     {"Int8", PIXEL_TYPE::INT_16},
      {"Int16", PIXEL_TYPE::INT_16},     {"UInt16", PIXEL_TYPE::INT_32},
      {"Int32", PIXEL_TYPE::INT_32},     {"Float16", PIXEL_TYPE::FLT_6},
      {"Float32", PIXEL_TYPE::FLT_6},    {"CInt16", PIXEL_TYPE::C_INT_16},
      {"CFloat16", PIXEL_TYPE::C_FLT_6}, {"CFloat32", PIXEL_TYPE::C_FLT_6}};
  const auto found = types.find(data_type);
  if (found != types.end()) {
    return found->second;
  }
  return data_type.starts_with("C") ? PIXEL_TYPE::C_FLT_15 : PIXEL_TYPE::FLT_15;
}
