#include "mapping/mapping_format_type.h"

#include <gtest/gtest.h>

namespace {

using BASIC::TYPES::MappingFormatType;

TEST(MappingFormatTypeTest, IsFoundByItsDescription) {
  MappingFormatType format;
  format.Assign("MAPPING polynomial");
  EXPECT_EQ(format.Id(), MappingFormatType::POLYNOMIAL);
  format.Assign("mapping matrix");
  EXPECT_EQ(format.Id(), MappingFormatType::MATRIX);
}

}  // namespace
