#include "info/type_ends.h"

TYPE_ENDS::TYPE_ENDS(PIXEL_TYPE type) noexcept {
  switch (type) {
    case PIXEL_TYPE::C_U_INT_8:
      high_ = 255.0;
      break;
    case PIXEL_TYPE::INT_16:
    case PIXEL_TYPE::C_INT_16:
      low_ = -32768.0;
      high_ = 32767.0;
      break;
    case PIXEL_TYPE::INT_32:
      low_ = -2147483648.0;
      high_ = 2147483647.0;
      break;
    case PIXEL_TYPE::FLT_2:
    case PIXEL_TYPE::C_FLT_2:
      low_ = -65504.0;
      high_ = 65504.0;
      break;
    default:
      break;
  }
}
