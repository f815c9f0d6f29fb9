#include "base/data_type.h"

#include <array>

namespace BASIC::TYPES {

std::span<const ENUM_ENTRY> DataType::Entries() {
  static constexpr std::array<ENUM_ENTRY, 30> entries = {
      {{"-", 0},          {"int_8", 1},      {"int_16", 2},      {"int_32", 4},    {"int_64", 8},
       {"u_int_8", 1},    {"u_int_16", 2},   {"u_int_32", 4},    {"u_int_64", 8},  {"flt_2", 2},
       {"flt_6", 4},      {"flt_15", 8},     {"flt_30", 16},     {"c_int_4", 1},   {"c_int_8", 2},
       {"c_int_16", 4},   {"c_int_32", 8},   {"c_int_64", 16},   {"c_u_int_4", 1}, {"c_u_int_8", 2},
       {"c_u_int_16", 4}, {"c_u_int_32", 8}, {"c_u_int_64", 16}, {"c_flt_2", 4},   {"c_flt_6", 8},
       {"c_flt_15", 16},  {"c_flt_30", 32},  {"rgb", 3},         {"others", 0},    {"-", 0}}};
  return entries;
}

}  // namespace BASIC::TYPES
