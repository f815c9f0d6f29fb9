#include "base/data_type.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

namespace {

using BASIC::TYPES::DataType;

struct DATA_TYPE_CASE {
  const char* name;
  int size;
};

constexpr DATA_TYPE_CASE data_types[] = {
    {"int_8", 1},      {"int_16", 2},      {"int_32", 4},    {"int_64", 8},    {"u_int_8", 1},
    {"u_int_16", 2},   {"u_int_32", 4},    {"u_int_64", 8},  {"flt_2", 2},     {"flt_6", 4},
    {"flt_15", 8},     {"flt_30", 16},     {"c_int_4", 1},   {"c_int_8", 2},   {"c_int_16", 4},
    {"c_int_32", 8},   {"c_int_64", 16},   {"c_u_int_4", 1}, {"c_u_int_8", 2}, {"c_u_int_16", 4},
    {"c_u_int_32", 8}, {"c_u_int_64", 16}, {"c_flt_2", 4},   {"c_flt_6", 8},   {"c_flt_15", 16},
    {"c_flt_30", 32},  {"rgb", 3},         {"others", 0}};

TEST(DATA_TYPE, TableOfNamesAndSizes) {
  std::string list = "Valid values are: ";
  int id = 0;
  for (const auto& [name, size] : data_types) {
    ++id;
    EXPECT_STREQ(DataType(id).Name(), name);
    EXPECT_EQ(DataType(id).Value(), size) << name;
    std::string upper_case = name;
    for (char& character : upper_case) {
      character = static_cast<char>(std::toupper(character));
    }
    DataType assigned;
    assigned.Assign(upper_case.c_str());
    EXPECT_EQ(assigned.Id(), id) << name;
    EXPECT_STREQ(assigned.Name(), name);
    list += std::string("'") + name + "' ";
  }
  EXPECT_EQ(DataType().Last(), 28);
  EXPECT_EQ(id, 28);
  EXPECT_EQ(DataType().ValidNames(), STRING(list.c_str()));
  for (const int unset : {0, 29}) {
    EXPECT_STREQ(DataType(unset).Name(), "-");
    EXPECT_EQ(DataType(unset).Value(), 0);
  }
  EXPECT_THROW(DataType(30), BASIC::TYPES::ERROR_ENUM_BASE_INVALID_ID);
}

TEST(DATA_TYPE, UnknownNameIsReportedWithTheClass) {
  try {
    DataType().Assign("flt_7");
    ADD_FAILURE();
  } catch (const BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE& error) {
    EXPECT_STREQ(error.what(),
                 "enumeration data type - invalid value of class "
                 "N5BASIC5TYPES8DataTypeE: flt_7");
  }
}

}  // namespace
