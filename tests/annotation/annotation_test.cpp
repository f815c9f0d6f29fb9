#include <gtest/gtest.h>

#include <string>

#include "annotation/chirp_type.h"
#include "annotation/image_mode.h"
#include "annotation/look_direction.h"
#include "annotation/orbit_direction.h"
#include "annotation/polarisation.h"
#include "annotation/product_status.h"

namespace {

TEST(ANNOTATION, NamesAreTheOnesOfTheField) {
  const struct {
    STRING list;
    const char* names;
  } cases[] = {{SAR::OrbitDirection().ValidNames(), "'ASCENDING' 'DESCENDING' "},
               {SAR::LookDirection().ValidNames(), "'LEFT' 'RIGHT' "},
               {SAR::ChirpType().ValidNames(), "'UP' 'DOWN' "},
               {SAR::Polarisation().ValidNames(), "'HH' 'HV' 'VH' 'VV' 'RH' 'RV' 'LH' 'LV' "},
               {ZARVO::ProductStatus().ValidNames(),
                "'POTENTIAL' 'PLANNED' 'ACQUIRED' 'CANCELED' 'FAILED' 'ARCHIVED' "
                "'QUALITYDEGRADED' 'REJECTED' "},
               {ZARVO::ImageMode().ValidNames(),
                "'SM' 'SL' 'HS' 'HS300' 'ST' 'SC' 'WS' 'TS' 'TOPS' 'IW' 'EW' 'WV' 'ATI' 'ATIS' "}};
  for (const auto& [list, names] : cases) {
    EXPECT_EQ(list.Text(), std::string("Valid values are: ") + names);
  }
}

TEST(IMAGE_MODE, StripmapKindModes) {
  std::string stripmap_modes;
  for (ZARVO::ImageMode mode; mode.Id() <= mode.Last(); ++mode) {
    stripmap_modes += mode.IsStripmap() ? mode.Name() + std::string(" ") : "";
  }
  EXPECT_EQ(stripmap_modes, "SM ATI ATIS ");
}

}  // namespace
