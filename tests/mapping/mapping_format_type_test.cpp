#include "mapping/mapping_format_type.h"

#include <gtest/gtest.h>

namespace {

using BASIC::TYPES::MappingFormatType;

TEST(MappingFormatTypeTest, IsFoundByNameAndByDescription) {
  for (const auto& [text, id] : {std::pair{"Polynomial", MappingFormatType::POLYNOMIAL},
                                 {"MAPPING polynomial", MappingFormatType::POLYNOMIAL},
                                 {"mapping matrix", MappingFormatType::MATRIX}}) {
    MappingFormatType format;
    format.Assign(text);
    EXPECT_EQ(format.Id(), id) << text;
  }
  EXPECT_THROW(MappingFormatType(4), BASIC::TYPES::ERROR_ENUM_BASE_INVALID_ID);
}

}  // namespace
