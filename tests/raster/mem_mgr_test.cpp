#include "raster/mem_mgr.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "base/complex.h"
#include "raster_test.h"

namespace {

constexpr mode_t permissions = 0640;

class MEM_MGR_TEST : public RASTER_TEST {
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

  void ExpectBounds(std::int64_t first_column, std::int64_t first_row, std::int64_t last_column,
                    std::int64_t last_row) const {
    EXPECT_EQ(raster_.Bounds().first_column, first_column);
    EXPECT_EQ(raster_.Bounds().first_row, first_row);
    EXPECT_EQ(raster_.Bounds().last_column, last_column);
    EXPECT_EQ(raster_.Bounds().last_row, last_row);
  }
};

TEST_F(MEM_MGR_TEST, ImagesOfEveryTypeAreTheSameBytesInMemoryAndFiles) {
  for (int code = 1; code <= 12; ++code) {
    SCOPED_TRACE(code);
    const auto type = static_cast<PIXEL_TYPE>(code);
    const RASTER_HEADER header(5, 3, type);
    MEM_MGR memory;
    memory.CreateInMemory(-5, 7, -1, 9, type);
    // After the first round both files replace others, some of which are longer.
    raster_.Create(File("created").c_str(), 1, 1, 5, 3, DataTypeOf(type));
    const std::string zeros(static_cast<std::size_t>(15 * BytesPerPixel(type)), '\0');
    EXPECT_EQ(Pixels(memory), zeros);
    EXPECT_EQ(ReadFile(File("created")), Raster(header, zeros));

    for (std::int64_t i = 0; i < memory.DataLength(); ++i) {
      memory.Data()[i] = raster_.Data()[i] = static_cast<unsigned char>(255 - i);
    }
    memory.Save(File("saved").c_str(), permissions);
    const std::string expected = Raster(header, Pixels(memory));
    EXPECT_EQ(ReadFile(File("saved")), expected);
    EXPECT_EQ(ReadFile(File("created")), expected) << "while it is mapped";

    raster_.Map(File("saved").c_str(), O_RDONLY);
    EXPECT_EQ(Pixels(raster_), Pixels(memory));
    EXPECT_EQ(raster_.PixelType(), type);
    ExpectBounds(0, 0, 4, 2);
  }
}

TEST_F(MEM_MGR_TEST, RawFilesAreWidthTimesHeightBytes) {
  WriteFile(File("raw"), "abcdefghijkl");
  raster_.MapRaw(File("raw").c_str(), 10, 20, 13, 22, O_RDWR);
  EXPECT_EQ(raster_.PixelType(), PIXEL_TYPE::U_INT_8);
  ExpectBounds(10, 20, 13, 22);
  EXPECT_EQ(raster_.Rows<char>()[21][12], 'g');
  raster_.Rows<char>()[22][13] = 'L';
  raster_.Sync(MS_SYNC);
  EXPECT_EQ(ReadFile(File("raw")), "abcdefghijkL");
  raster_.WriteRaw(File("copy").c_str(), permissions);
  EXPECT_EQ(ReadFile(File("copy")), "abcdefghijkL");

  const RASTER_HEADER header(2, 3, PIXEL_TYPE::INT_16);
  raster_.Map(WriteRaster("raster", header, "abcdefghijkl").c_str(), O_RDONLY);
  raster_.WriteRaw(File("copy").c_str(), permissions);
  EXPECT_EQ(ReadFile(File("copy")), "abcdef") << "of wider pixels only so many bytes";
  raster_.CreateInMemory(0, 0, (3LL << 30) - 1, 0, PIXEL_TYPE::U_INT_8);
  EXPECT_NO_THROW(raster_.WriteRaw("/dev/null", permissions)) << "more than one write takes";
}

TEST_F(MEM_MGR_TEST, RowsAndFilesBeyond4GiBAreSparseAndAddressed) {
  constexpr std::int64_t width = 0xFFFFFFFF;
  const std::string path = File("large");
  raster_.Create(path.c_str(), 0, 0, width - 1, 1, PIXEL_TYPE::INT_32);
  raster_.Rows<std::int32_t>()[1][width - 1] = 0x01020304;
  EXPECT_TRUE(log_.Has("DEBUG : creating file with dimensions 4294967295x2"));
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_size, 32 + 8 * width);
  EXPECT_LT(status.st_blocks, 1024);

  raster_.Map(path.c_str(), O_RDONLY);
  EXPECT_EQ(raster_.DataLength(), 8 * width);
  EXPECT_EQ(raster_.Rows<std::int32_t>()[1][width - 1], 0x01020304);
  EXPECT_EQ(raster_.Rows<std::int32_t>()[1][width - 2], 0);
  EXPECT_EQ(raster_.Data()[8 * width - 1], 1);
  std::filesystem::resize_file(path, 32 + 8 * static_cast<std::uintmax_t>(width) - 1);
  EXPECT_THROW(raster_.Map(path.c_str(), O_RDONLY), ERROR_CAN_NOT_READ_FILE);
}

TEST_F(MEM_MGR_TEST, DiskThatDoesNotTellItsSizeIsNotWarnedOf) {
  const int file = ::memfd_create("disk", MFD_CLOEXEC);
  raster_.Create(("/proc/self/fd/" + std::to_string(file)).c_str(), 0, 0, 9, 9, PIXEL_TYPE::RGB);
  ::close(file);
  EXPECT_EQ(log_.Text().find("WARN"), std::string::npos);
}

TEST_F(MEM_MGR_TEST, GivenPixelTypesOverrideTheHeaderAndStepsAreLogged) {
  RASTER_HEADER header(2, 3, PIXEL_TYPE::INT_16);
  header.magic = header.length = header.depth = 0;
  header.type = 77;
  const std::string path = WriteRaster("raster", header, std::string(48, 'x'));
  raster_.Map(path.c_str(), O_RDONLY, PIXEL_TYPE::FLT_2);
  EXPECT_EQ(raster_.DataLength(), 12);
  raster_.CreateInMemory(0, 0, 4095, 9, PIXEL_TYPE::U_INT_8);
  raster_.Advise(3);
  raster_.Unmap();
  const std::vector<std::string> expected = {"DEBUG : map file with access mode 0",
                                             "DEBUG : map file <" + path + "> with prot flag 1",
                                             "DEBUG : mmap successful",
                                             "DEBUG : MEM_MGR: delete num. rec. interface ..",
                                             "DEBUG : MEM_MGR: unmap file ..",
                                             "DEBUG : MEM_MGR: making 3 madvise calls",
                                             "DEBUG : MEM_MGR: madvise completed",
                                             "DEBUG : MEM_MGR: delete num. rec. interface ..",
                                             "DEBUG : MEM_MGR: delete image memory .."};
  EXPECT_EQ(log_.Lines(), expected);
}

TEST_F(MEM_MGR_TEST, ImagesWithoutPixelsAreJustTheirHeader) {
  // A row table of this height would take 32 GiB.
  const RASTER_HEADER header(0, 0xFFFFFFFF, PIXEL_TYPE::FLT_6);
  raster_.Map(WriteRaster("tall", header, "").c_str(), O_RDONLY);
  EXPECT_NE(raster_.Data(), nullptr);
  EXPECT_EQ(raster_.Height(), 0xFFFFFFFF);
  EXPECT_EQ(raster_.DataLength(), 0);
}

TEST_F(MEM_MGR_TEST, RowsAndColumnsCountFromTheGivenOnes) {
  using PIXEL = COMPLEX<std::int16_t>;
  raster_.CreateInMemory(0, 0, 3, 2, PIXEL_TYPE::C_INT_16);
  raster_.Rows<PIXEL>()[0][0] = {1, 2};
  raster_.Rows<PIXEL>()[2][3] = {3, 4};
  EXPECT_EQ(reinterpret_cast<const PIXEL*>(raster_.Data())[11].im, 4);
  for (const auto& [column, row] : {std::pair{1LL, 1LL}, {-20, 1000}, {1LL << 40, -(1LL << 40)}}) {
    const auto* const* rows = raster_.GetNumRecMatrix<PIXEL>(column, row);
    EXPECT_EQ(rows[row][column].re, 1);
    EXPECT_EQ(rows[row + 2][column + 3].im, 4);
    EXPECT_EQ(raster_.Rows<PIXEL>(), rows);
    ExpectBounds(column, row, column + 3, row + 2);
  }
  EXPECT_THROW(raster_.GetNumRecMatrix<PIXEL>(INT64_MAX - 2, 0), ERROR_ARGUMENT);
  EXPECT_THROW(raster_.GetNumRecMatrix<PIXEL>(0, INT64_MAX), ERROR_ARGUMENT);
  EXPECT_THROW(raster_.Rows<double>(), ERROR_NOT_SUPPORTED_PIXEL_TYPE);
  EXPECT_TRUE(log_.Has("ALARM : MEM_MGR: pixels are 4 bytes long, not 8"));
  EXPECT_EQ(raster_.Rows<PIXEL>()[2 - (1LL << 40)][3 + (1LL << 40)].re, 3) << "nothing changed";
}

TEST_F(MEM_MGR_TEST, ColorMapsStandBetweenHeaderAndPixelsAndAreNotSaved) {
  raster_.Create(File("raster").c_str(), 0, 0, 1, 0, PIXEL_TYPE::U_INT_8, MapOf("rrrgggbbb"));
  raster_.Data()[1] = 'p';
  RASTER_HEADER header(2, 1, PIXEL_TYPE::U_INT_8);
  const std::string pixels("\0p", 2);
  const mode_t mask = ::umask(0);
  raster_.Save(File("saved").c_str(), permissions);
  ::umask(mask);
  EXPECT_EQ(ReadFile(File("saved")), Raster(header, pixels));
  struct stat status {};
  ASSERT_EQ(::stat(File("saved").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, permissions);

  EXPECT_EQ(Planes(raster_.ColorMap()), "rrrgggbbb");
  header.map_type = 1;
  header.map_length = 9;
  EXPECT_EQ(ReadFile(File("raster")), Raster(header, "rrrgggbbb" + pixels));
  raster_.SetColorTable(MapOf("123456"));
  raster_.SetColorTable(raster_.ColorMap());
  EXPECT_EQ(Planes(raster_.ColorMap()), "123456");
  EXPECT_EQ(ReadFile(File("raster")), Raster(header, "rrrgggbbb" + pixels)) << "in memory only";

  header.map_type = 0;
  header.map_length = 8;  // whole entries next to the pixels, whatever the map type
  raster_.Map(WriteRaster("raster", header, "..rrggbb" + pixels).c_str(), O_RDONLY);
  EXPECT_EQ(Planes(raster_.ColorMap()), "rrggbb");
  EXPECT_EQ(Pixels(raster_), pixels);
  raster_.Unmap();
  EXPECT_EQ(raster_.ColorMap().entries, 0U);
}

}  // namespace
