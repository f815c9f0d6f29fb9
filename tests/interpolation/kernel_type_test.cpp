#include "interpolation/kernel_type.h"

#include <gtest/gtest.h>

namespace {

using BASIC::TYPES::KernelType;

TEST(KernelTypeTest, IsFoundByItsDescription) {
  for (const auto& [text, id] :
       {std::pair{"CUBIC convolution", KernelType::CUBIC_CONVOLUTION},
        {"truncated sinc.", KernelType::TRUNCATED_SINC_NO_WEIGHT},
        {"Truncated Sinc with Kaiser weight", KernelType::TRUNCATED_SINC_KAISER_WEIGHT}}) {
    KernelType type;
    type.Assign(text);
    EXPECT_EQ(type.Id(), id) << text;
  }
}

}  // namespace
