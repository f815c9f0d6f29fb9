#include "base/error_exception.h"
#include "raster_test.h"

namespace {

class MEM_MGR_COLOR_MAP : public RASTER_TEST {
 protected:
  static std::string Planes(const COLOR_MAP& map) {
    std::string planes;
    for (const unsigned char* plane : {map.red, map.green, map.blue}) {
      planes.append(reinterpret_cast<const char*>(plane), map.entries);
    }
    return planes;
  }

  /// Borrows the text.
  static COLOR_MAP MapOf(const std::string& planes) {
    return COLOR_MAP::FromPlanes(reinterpret_cast<const unsigned char*>(planes.data()),
                                 static_cast<std::uint32_t>(planes.size() / 3));
  }
};

TEST_F(MEM_MGR_COLOR_MAP, StandsBetweenHeaderAndPixels) {
  const std::string planes = std::string(256, 'r') + std::string(256, 'g') + std::string(256, 'b');
  MEM_MGR raster;
  raster.Create(File("raster").c_str(), 0, 0, 1, 1, PIXEL_TYPE::U_INT_8, MapOf(planes));
  raster.Data()[3] = 'p';
  RASTER_HEADER header(2, 2, PIXEL_TYPE::U_INT_8);
  header.map_type = 1;
  header.map_length = 768;
  const std::string expected = Raster(header, planes + std::string("\0\0\0p", 4));
  EXPECT_EQ(ReadFile(File("raster")), expected);
  EXPECT_EQ(Planes(raster.ColorMap()), planes);

  raster.Map(File("raster").c_str(), read_only);
  EXPECT_EQ(Planes(raster.ColorMap()), planes);
  EXPECT_EQ(Pixels(raster), std::string("\0\0\0p", 4));
}

TEST_F(MEM_MGR_COLOR_MAP, OfAnyInputIsSkipped) {
  for (const PIXEL_TYPE type : all_pixel_types) {
    RASTER_HEADER header(1, 1, type);
    header.map_type = 1;
    header.map_length = 12;
    const std::string pixel(static_cast<std::size_t>(BytesPerPixel(type)), 'p');
    MEM_MGR raster;
    raster.Map(WriteRaster("raster", header, "rrrrggggbbbb" + pixel).c_str(), read_only);
    EXPECT_EQ(Pixels(raster), pixel) << static_cast<int>(type);
    EXPECT_EQ(Planes(raster.ColorMap()), "rrrrggggbbbb");
  }
}

TEST_F(MEM_MGR_COLOR_MAP, OfOddLengthHasItsPlanesNextToThePixels) {
  RASTER_HEADER header(1, 1, PIXEL_TYPE::U_INT_8);
  header.map_length = 8;  // a map without map type is a map all the same
  MEM_MGR raster;
  raster.Map(WriteRaster("raster", header, "..rrggbbp").c_str(), read_only);
  EXPECT_EQ(Planes(raster.ColorMap()), "rrggbb");
  EXPECT_EQ(Pixels(raster), "p");
}

TEST_F(MEM_MGR_COLOR_MAP, CanBeReplacedInMemoryOnly) {
  MEM_MGR raster;
  raster.Create(File("raster").c_str(), 0, 0, 0, 0, PIXEL_TYPE::U_INT_8, MapOf("abc"));
  const std::string before = ReadFile(File("raster"));
  {
    const std::string planes = "rrggbb";
    raster.SetColorTable(MapOf(planes));
  }
  EXPECT_EQ(Planes(raster.ColorMap()), "rrggbb");
  raster.SetColorTable(raster.ColorMap());
  EXPECT_EQ(Planes(raster.ColorMap()), "rrggbb");
  raster.SetColorTable({});
  EXPECT_EQ(raster.ColorMap().entries, 0U);
  EXPECT_EQ(ReadFile(File("raster")), before);
  raster.Unmap();
  EXPECT_EQ(raster.ColorMap().entries, 0U);
}

TEST_F(MEM_MGR_COLOR_MAP, ThatAHeaderCanNotHoldIsRefused) {
  MEM_MGR raster;
  COLOR_MAP map;
  map.entries = 0x55555556;  // x 3 = 2^32 + 2
  EXPECT_THROW(raster.Create(File("raster").c_str(), 0, 0, 0, 0, PIXEL_TYPE::U_INT_8, map),
               ERROR_ARGUMENT);
  EXPECT_FALSE(std::filesystem::exists(File("raster")));
}

}  // namespace
