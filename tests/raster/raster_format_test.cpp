#include <gtest/gtest.h>

#include <numeric>

#include "raster/pixel_type.h"
#include "raster/raster_header.h"

namespace {

TEST(RASTER_HEADER, IsEightBigEndianWordsAndKeepsAnyBytes) {
  RASTER_HEADER::BYTES bytes{};
  std::iota(bytes.rbegin(), bytes.rend(), static_cast<unsigned char>(0xD1));
  const RASTER_HEADER header(bytes);
  EXPECT_EQ(header.width, 0xECEBEAE9U);
  EXPECT_EQ(header.PixelOffset(), 32 + 0xD4D3D2D1LL);
  EXPECT_EQ(header.Encode(), bytes);
  const RASTER_HEADER large(70000, 65536, PIXEL_TYPE::C_INT_16);
  EXPECT_EQ(large.magic, 0x59A66A95);
  EXPECT_EQ(large.length, (70000ULL * 65536 * 4) & 0xFFFFFFFF);
}

TEST(PIXEL_TYPE, IsFoundByItsWordsAndItsDataType) {
  for (int code = 1; code <= 12; ++code) {
    const auto type = static_cast<PIXEL_TYPE>(code);
    EXPECT_EQ(PixelTypeOf(DataTypeOf(type)), type);
    EXPECT_EQ(DataTypeOf(type).Value(), BytesPerPixel(type)) << code;
    const auto depth = static_cast<std::uint32_t>(8 * BytesPerPixel(type));
    EXPECT_EQ(PixelTypeFromWords(TypeWord(type), depth), type) << code;
  }
}

TEST(PIXEL_TYPE, IsFoundByOlderWordsAndElseUnknown) {
  EXPECT_EQ(PixelTypeFromWords(100, 8), PIXEL_TYPE::U_INT_8);
  EXPECT_EQ(PixelTypeFromWords(103, 16), PIXEL_TYPE::INT_16);
  EXPECT_EQ(PixelTypeFromWords(199, 0), PIXEL_TYPE::FLT_6);
  EXPECT_EQ(PixelTypeFromWords(200, 64), PIXEL_TYPE::FLT_6);
  EXPECT_EQ(PixelTypeFromWords(97, 0), PIXEL_TYPE::C_INT_16) << "whatever the depth";
  EXPECT_EQ(PixelTypeFromWords(1, 15), PIXEL_TYPE::U_INT_8) << "depth is cut to whole bytes";
  for (const auto& [type_word, depth] :
       {std::pair{0U, 8U}, {1U, 7U}, {1U, 24U}, {101U, 32U}, {104U, 8U}, {~0U, ~0U}}) {
    EXPECT_EQ(PixelTypeFromWords(type_word, depth), PIXEL_TYPE::OTHERS) << type_word;
  }
  EXPECT_EQ(BytesPerPixel(static_cast<PIXEL_TYPE>(-1)), 0);
  BASIC::TYPES::DataType no_pixel;
  no_pixel.Assign("flt_30");
  EXPECT_EQ(PixelTypeOf(no_pixel), PIXEL_TYPE::OTHERS);
}

}  // namespace
