#include "raster/pixel_type.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace {

struct CASE {
  int code;
  const char* name;
  int bytes;
  std::uint32_t type_word;
};

constexpr CASE cases[] = {{1, "u_int_8", 1, 1},    {2, "int_16", 2, 1},      {3, "int_32", 4, 1},
                          {4, "flt_2", 2, 93},     {5, "flt_6", 4, 99},      {6, "flt_15", 8, 98},
                          {7, "c_u_int_8", 2, 94}, {8, "c_int_16", 4, 97},   {9, "c_flt_2", 4, 92},
                          {10, "c_flt_6", 8, 96},  {11, "c_flt_15", 16, 95}, {12, "rgb", 3, 3}};

TEST(PIXEL_TYPES, AgreeWithTheirDataTypes) {
  for (const CASE& expected : cases) {
    const auto type = static_cast<PIXEL_TYPE>(expected.code);
    const BASIC::TYPES::DataType data_type = DataTypeOf(type);
    EXPECT_STREQ(data_type.Name(), expected.name);
    EXPECT_EQ(data_type.Value(), BytesPerPixel(type)) << expected.name;
    EXPECT_EQ(PixelTypeOf(data_type), type) << expected.name;
    EXPECT_EQ(BytesPerPixel(type), expected.bytes) << expected.name;
  }
}

TEST(PIXEL_TYPES, ReadBackFromTheWordsTheyAreWrittenWith) {
  for (const CASE& expected : cases) {
    const auto type = static_cast<PIXEL_TYPE>(expected.code);
    EXPECT_EQ(TypeWord(type), expected.type_word) << expected.name;
    const auto depth = static_cast<std::uint32_t>(8 * expected.bytes);
    EXPECT_EQ(PixelTypeFromWords(expected.type_word, depth), type) << expected.name;
  }
}

TEST(PIXEL_TYPES, OtherTypeWordsAreAcceptedToo) {
  for (const std::uint32_t word : {100U, 101U, 102U, 103U}) {
    EXPECT_EQ(PixelTypeFromWords(word, 8), PIXEL_TYPE::U_INT_8) << word;
    EXPECT_EQ(PixelTypeFromWords(word, 16), PIXEL_TYPE::INT_16) << word;
    EXPECT_EQ(PixelTypeFromWords(word, 32), PIXEL_TYPE::OTHERS) << word;
  }
  EXPECT_EQ(PixelTypeFromWords(199, 0), PIXEL_TYPE::FLT_6);
  EXPECT_EQ(PixelTypeFromWords(200, 64), PIXEL_TYPE::FLT_6);
  EXPECT_EQ(PixelTypeFromWords(3, 8), PIXEL_TYPE::RGB) << "whatever the depth";
  EXPECT_EQ(PixelTypeFromWords(97, 0), PIXEL_TYPE::C_INT_16) << "whatever the depth";
  EXPECT_EQ(PixelTypeFromWords(1, 15), PIXEL_TYPE::U_INT_8) << "depth is cut to whole bytes";
}

TEST(PIXEL_TYPES, UnknownOnesAreOthers) {
  for (const std::uint32_t depth : {0U, 7U, 24U, 64U, 0xFFFFFFFFU}) {
    EXPECT_EQ(PixelTypeFromWords(1, depth), PIXEL_TYPE::OTHERS) << depth;
  }
  for (const std::uint32_t word : {0U, 2U, 4U, 91U, 104U, 198U, 201U, 0xFFFFFFFFU}) {
    EXPECT_EQ(PixelTypeFromWords(word, 8), PIXEL_TYPE::OTHERS) << word;
  }
  for (const int code : {-1, 0, 13}) {
    EXPECT_EQ(BytesPerPixel(static_cast<PIXEL_TYPE>(code)), 0) << code;
  }
  EXPECT_STREQ(DataTypeOf(PIXEL_TYPE::OTHERS).Name(), "others");
  for (const char* name : {"others", "int_8", "flt_30", "-"}) {
    BASIC::TYPES::DataType data_type;
    data_type.Assign(name);
    EXPECT_EQ(PixelTypeOf(data_type), PIXEL_TYPE::OTHERS) << name;
  }
}

}  // namespace
