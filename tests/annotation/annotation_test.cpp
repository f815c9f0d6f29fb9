#include <gtest/gtest.h>

#include <string>

#include "annotation/annotation_types.h"

namespace {

TEST(IMAGE_MODE, StripmapKindModes) {
  std::string stripmap_modes;
  for (ZARVO::ImageMode mode; mode.Id() <= mode.Last(); ++mode) {
    stripmap_modes += mode.IsStripmap() ? mode.Name() + std::string(" ") : "";
  }
  EXPECT_EQ(stripmap_modes, "SM ATI ATIS ");
}

}  // namespace
