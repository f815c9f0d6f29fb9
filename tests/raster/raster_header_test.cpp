#include "raster/raster_header.h"

#include <gtest/gtest.h>

namespace {

TEST(RASTER_HEADERS, WordsAreBigEndian) {
  const RASTER_HEADER header(100, 50, PIXEL_TYPE::C_FLT_6);
  const RASTER_HEADER::BYTES expected = {0x59, 0xA6, 0x6A, 0x95,  // magic
                                         0,    0,    0,    0x64,  // width
                                         0,    0,    0,    0x32,  // height
                                         0,    0,    0,    0x40,  // depth
                                         0,    0,    0x9C, 0x40,  // length
                                         0,    0,    0,    0x60,  // type
                                         0,    0,    0,    0,     // map type
                                         0,    0,    0,    0};    // map length
  EXPECT_EQ(header.Encode(), expected);
  EXPECT_EQ(header.PixelOffset(), 32);
}

TEST(RASTER_HEADERS, LengthIsTheLow32BitsOfTheProduct) {
  const RASTER_HEADER header(70000, 65536, PIXEL_TYPE::C_INT_16);
  EXPECT_EQ(header.length, (70000ULL * 65536 * 4) & 0xFFFFFFFF);
}

TEST(RASTER_HEADERS, EveryWordIsReadBack) {
  RASTER_HEADER::BYTES bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<unsigned char>(0xF0 - i);
  }
  const RASTER_HEADER header(bytes);
  EXPECT_EQ(header.magic, 0xF0EFEEEDU) << "any first word is accepted";
  EXPECT_EQ(header.width, 0xECEBEAE9U);
  EXPECT_EQ(header.map_length, 0xD4D3D2D1U);
  EXPECT_EQ(header.PixelOffset(), 32 + 0xD4D3D2D1LL);
  EXPECT_EQ(header.Encode(), bytes);
}

}  // namespace
