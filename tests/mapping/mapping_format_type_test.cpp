#include "mapping/mapping_format_type.h"

#include <gtest/gtest.h>

namespace {

using BASIC::TYPES::ERROR_ENUM_BASE_INVALID_ID;
using BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE;
using BASIC::TYPES::MappingFormatType;

TEST(MappingFormatTypeTest, IsFoundByNameAndByDescription) {
  MappingFormatType format;
  for (const char* text :
       {"polynomial", "Polynomial", "Mapping polynomial", "MAPPING POLYNOMIAL"}) {
    format.Set(0);
    format.Assign(text);
    EXPECT_EQ(format.Id(), MappingFormatType::POLYNOMIAL) << text;
    EXPECT_STREQ(format.Name(), "polynomial");
  }
  format.Assign("mapping matrix");
  EXPECT_EQ(format.Id(), MappingFormatType::MATRIX);
  EXPECT_STREQ(format.Name(), "matrix");
}

TEST(MappingFormatTypeTest, BothEndsAreValidAndNothingElse) {
  MappingFormatType format;
  format.Assign("-");
  EXPECT_EQ(format.Id(), 0);
  EXPECT_STREQ(MappingFormatType(3).Name(), "-");
  EXPECT_THROW(MappingFormatType(4), ERROR_ENUM_BASE_INVALID_ID);
  EXPECT_THROW(MappingFormatType(-1), ERROR_ENUM_BASE_INVALID_ID);
}

TEST(MappingFormatTypeTest, AnUnknownTextIsRefusedAndChangesNothing) {
  MappingFormatType format(MappingFormatType::MATRIX);
  for (const char* text : {"", "matrices", "1", "Mapping"}) {
    EXPECT_THROW(format.Assign(text), ERROR_ENUM_BASE_INVALID_VALUE) << text;
  }
  EXPECT_EQ(format.Id(), MappingFormatType::MATRIX);
  EXPECT_STREQ(format.ValidNames().Text(), "Valid values are: 'matrix' 'polynomial' ");
}

}  // namespace
