#include "core/core_variant.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/log_capture.h"

namespace {

class CoreVariantTest : public testing::Test {
 protected:
  ~CoreVariantTest() override { ::unsetenv("RESAMPLE_SIMD"); }

  const CORE_VARIANT& Choose(const char* wanted) {
    ::setenv("RESAMPLE_SIMD", wanted, 1);
    return ChooseCoreVariant();
  }

  /// The last one that the processor supports.
  static std::string Fastest() {
    std::string name;
    for (const CORE_VARIANT& variant : CoreVariants()) {
      name = variant.is_supported() ? variant.name : name;
    }
    return name;
  }

  LOG_CAPTURE log_;
};

TEST_F(CoreVariantTest, TheFastestOneRunsUnlessAnotherIsWanted) {
  ::unsetenv("RESAMPLE_SIMD");
  EXPECT_EQ(ChooseCoreVariant().name, Fastest());
  EXPECT_TRUE(log_.Has("DEBUG : core: " + Fastest())) << log_.Text();
  for (const CORE_VARIANT& variant : CoreVariants()) {
    if (variant.is_supported()) {
      EXPECT_EQ(&Choose(variant.name), &variant);
      EXPECT_TRUE(log_.Has(std::string("DEBUG : core: ") + variant.name)) << log_.Text();
    }
  }
}

TEST_F(CoreVariantTest, UnknownAndUnsupportedNamesAreWarnedOfAndIgnored) {
  EXPECT_EQ(Choose("x86-64-v9").name, Fastest());
  EXPECT_TRUE(log_.Has("WARN  : RESAMPLE_SIMD is not known: x86-64-v9")) << log_.Text();
  for (const CORE_VARIANT& variant : CoreVariants()) {
    if (!variant.is_supported()) {
      EXPECT_EQ(Choose(variant.name).name, Fastest());
      EXPECT_TRUE(log_.Has(
          std::string("WARN  : RESAMPLE_SIMD is not supported by this processor: ") + variant.name))
          << log_.Text();
    }
  }
}

}  // namespace
