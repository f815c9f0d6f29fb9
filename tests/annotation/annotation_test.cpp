#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "annotation/chirp_type.h"
#include "annotation/image_mode.h"
#include "annotation/look_direction.h"
#include "annotation/orbit_direction.h"
#include "annotation/polarisation.h"
#include "annotation/product_status.h"

namespace {

TEST(IMAGE_MODE, StripmapKindModes) {
  const struct {
    const char* name;
    bool stripmap;
  } cases[] = {{"SM", true},     {"ATI", true}, {"ATIS", true}, {"SL", false}, {"HS", false},
               {"HS300", false}, {"ST", false}, {"SC", false},  {"WS", false}, {"TS", false},
               {"TOPS", false},  {"IW", false}, {"EW", false},  {"WV", false}, {"-", false}};
  for (const auto& [name, stripmap] : cases) {
    ZARVO::ImageMode mode;
    mode.Assign(name);
    EXPECT_EQ(mode.IsStripmap(), stripmap) << name;
    EXPECT_STREQ(mode.Name(), name);
  }
  EXPECT_FALSE(ZARVO::ImageMode().IsStripmap());
}

TEST(IMAGE_MODE, UnknownModeIsReportedWithTheValidOnes) {
  try {
    ZARVO::ImageMode().Assign("STRIPMAP");
    ADD_FAILURE();
  } catch (const BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE& error) {
    EXPECT_STREQ(error.what(),
                 "enumeration data type - invalid value of class N5ZARVO9ImageModeE: STRIPMAP");
    EXPECT_TRUE(std::string_view(error.ValidValues().Text()).starts_with("Valid values are: 'SM' "))
        << error.ValidValues().Text();
  }
}

/// A table is sound when each name leads to its own entry, "-" stands at both ends only, and
/// every value is explained.
template <class ENUMERATION>
class ANNOTATION : public testing::Test {};

using ANNOTATION_TYPES = testing::Types<SAR::OrbitDirection, SAR::LookDirection, SAR::Polarisation,
                                        SAR::ChirpType, ZARVO::ProductStatus, ZARVO::ImageMode>;
TYPED_TEST_SUITE(ANNOTATION, ANNOTATION_TYPES);

TYPED_TEST(ANNOTATION, EveryNameLeadsToItsOwnEntry) {
  const auto entries = TypeParam::Entries();
  ASSERT_GE(entries.size(), 3U);
  for (int id = 1; id <= TypeParam().Last(); ++id) {
    const BASIC::TYPES::ENUM_ENTRY& entry = entries[static_cast<std::size_t>(id)];
    TypeParam value;
    value.Assign(entry.name);
    EXPECT_EQ(value.Id(), id) << entry.name;
    EXPECT_STRNE(entry.name, "-");
    EXPECT_STRNE(entry.description, "");
  }
  EXPECT_STREQ(entries.front().name, "-");
  EXPECT_STREQ(entries.back().name, "-");
}

TEST(ANNOTATION_NAMES, AreTheOnesOfTheField) {
  const struct {
    STRING list;
    const char* names;
  } cases[] = {{SAR::OrbitDirection().ValidNames(), "'ASCENDING' 'DESCENDING' "},
               {SAR::LookDirection().ValidNames(), "'LEFT' 'RIGHT' "},
               {SAR::ChirpType().ValidNames(), "'UP' 'DOWN' "},
               {SAR::Polarisation().ValidNames(), "'HH' 'HV' 'VH' 'VV' 'RH' 'RV' 'LH' 'LV' "},
               {ZARVO::ProductStatus().ValidNames(),
                "'POTENTIAL' 'PLANNED' 'ACQUIRED' 'CANCELED' 'FAILED' 'ARCHIVED' "
                "'QUALITYDEGRADED' 'REJECTED' "}};
  for (const auto& [list, names] : cases) {
    EXPECT_EQ(std::string(list.Text()), std::string("Valid values are: ") + names);
  }
}

}  // namespace
