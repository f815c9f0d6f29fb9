#include "interpolation/kernel_type.h"

#include <gtest/gtest.h>

namespace {

using BASIC::TYPES::ERROR_ENUM_BASE_INVALID_ID;
using BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE;
using BASIC::TYPES::KernelType;

TEST(KernelTypeTest, IsFoundByNameAndByDescription) {
  const struct {
    const char* name;
    const char* description;
    int id;
  } shapes[] = {
      {"cubic_convolution", "CUBIC convolution", KernelType::CUBIC_CONVOLUTION},
      {"truncated_sinc_no_weight", "truncated sinc.", KernelType::TRUNCATED_SINC_NO_WEIGHT},
      {"truncated_sinc_kaiser_weight", "Truncated Sinc with Kaiser weight",
       KernelType::TRUNCATED_SINC_KAISER_WEIGHT}};
  for (const auto& shape : shapes) {
    KernelType by_name;
    by_name.Assign(shape.name);
    KernelType by_description;
    by_description.Assign(shape.description);
    EXPECT_EQ(by_name.Id(), shape.id);
    EXPECT_EQ(by_description.Id(), shape.id);
    EXPECT_STREQ(by_description.Name(), shape.name);
  }
}

TEST(KernelTypeTest, OtherTextsAndIdsAreRefused) {
  KernelType type;
  for (const char* text : {"", "sinc", "truncated sinc", "cubic_convolution "}) {
    EXPECT_THROW(type.Assign(text), ERROR_ENUM_BASE_INVALID_VALUE) << text;
  }
  EXPECT_EQ(KernelType(4).Id(), 4);
  EXPECT_THROW(KernelType(5), ERROR_ENUM_BASE_INVALID_ID);
}

}  // namespace
