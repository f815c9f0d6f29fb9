#include <fcntl.h>
#include <sys/stat.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>

#include "base/error_exception.h"
#include "raster_test.h"

namespace {

class MEM_MGR_MAP : public RASTER_TEST {
 protected:
  template <class ERROR>
  void ExpectRefused(const std::string& path, const std::string& alarm,
                     int access_mode = read_only) {
    MEM_MGR raster;
    EXPECT_THROW(raster.Map(path.c_str(), access_mode), ERROR) << alarm;
    EXPECT_EQ(raster.Data(), nullptr);
    EXPECT_EQ(raster.Width() * raster.Height(), 0);
    EXPECT_EQ(raster.PixelType(), PIXEL_TYPE::OTHERS);
    ExpectAlarm(alarm);
  }

  /// The system's word on the mapping that holds the image: "r--s", for example.
  static std::string Protection(const MEM_MGR& raster) {
    std::ifstream mappings("/proc/self/maps");
    for (std::string line; std::getline(mappings, line);) {
      std::uintptr_t start = 0;
      std::uintptr_t end = 0;
      char dash = 0;
      std::string protection;
      std::istringstream(line) >> std::hex >> start >> dash >> end >> protection;
      const auto address = reinterpret_cast<std::uintptr_t>(raster.Data());
      if (start <= address && address < end) {
        return protection;
      }
    }
    return "not mapped";
  }

  static auto OpenFiles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
  }

  const RASTER_HEADER header_2_by_3_ = RASTER_HEADER(2, 3, PIXEL_TYPE::INT_16);
};

TEST_F(MEM_MGR_MAP, PixelsOfEveryTypeAreReadInPlace) {
  for (const PIXEL_TYPE type : all_pixel_types) {
    std::string pixels;
    for (int i = 0; i < 5 * 3 * BytesPerPixel(type); ++i) {
      pixels += static_cast<char>(255 - i);
    }
    const std::string path = WriteRaster("raster", RASTER_HEADER(5, 3, type), pixels);
    MEM_MGR raster;
    raster.Map(path.c_str(), read_only);
    const int code = static_cast<int>(type);
    EXPECT_EQ(raster.PixelType(), type);
    EXPECT_EQ(raster.PixelDataType().Value(), raster.BytesPerPixel()) << code;
    EXPECT_EQ(raster.Width(), 5) << code;
    EXPECT_EQ(raster.Height(), 3) << code;
    EXPECT_EQ(Pixels(raster), pixels) << code;
  }
}

TEST_F(MEM_MGR_MAP, ProtectionFollowsTheAccessMode) {
  const std::string path = WriteRaster("raster", header_2_by_3_, "abcdefghijkl");
  MEM_MGR raster;
  raster.Map(path.c_str(), read_only);
  EXPECT_EQ(Protection(raster), "r--s");
  raster.Map(path.c_str(), read_write);
  EXPECT_EQ(Protection(raster), "rw-s");
  raster.Map(path.c_str(), O_RDWR | O_APPEND);
  EXPECT_EQ(Protection(raster), "---s") << "no access for any other mode";
  raster.MapRaw(path.c_str(), 0, 0, 43, 0, read_only);
  EXPECT_EQ(Protection(raster), "r--s");
  raster.CreateInMemory(0, 0, 1, 1, PIXEL_TYPE::U_INT_8);
  EXPECT_EQ(Protection(raster), "rw-p");
}

TEST_F(MEM_MGR_MAP, WriteProtectedFilesCanBeRead) {
  const std::string path = WriteRaster("raster", header_2_by_3_, "abcdefghijkl");
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  MEM_MGR raster;
  raster.Map(path.c_str(), read_only);
  EXPECT_EQ(Pixels(raster), "abcdefghijkl");
}

TEST_F(MEM_MGR_MAP, ChangesReachTheFile) {
  const std::string path = WriteRaster("raster", header_2_by_3_, "abcdefghijkl");
  {
    MEM_MGR raster;
    raster.Map(path.c_str(), read_write);
    raster.Data()[11] = 'L';
    EXPECT_EQ(ReadFile(path), Raster(header_2_by_3_, "abcdefghijkL")) << "while it is mapped";
  }
  EXPECT_EQ(ReadFile(path), Raster(header_2_by_3_, "abcdefghijkL"));
}

TEST_F(MEM_MGR_MAP, StepsAreLogged) {
  const std::string path = WriteRaster("raster", header_2_by_3_, "abcdefghijkl");
  MEM_MGR raster;
  raster.Map(path.c_str(), read_write);
  raster.Map(path.c_str(), read_only, PIXEL_TYPE::FLT_2);
  raster.Unmap();
  const std::vector<std::string> expected = {"DEBUG : map file with access mode 2",
                                             "DEBUG : map file with prot flag 3",
                                             "DEBUG : MEM_MGR: delete num. rec. interface ..",
                                             "DEBUG : MEM_MGR: unmap file ..",
                                             "DEBUG : map file with access mode 0",
                                             "DEBUG : map file <" + path + "> with prot flag 1",
                                             "DEBUG : mmap successful",
                                             "DEBUG : MEM_MGR: delete num. rec. interface ..",
                                             "DEBUG : MEM_MGR: unmap file .."};
  EXPECT_EQ(log_.Lines(), expected);
}

TEST_F(MEM_MGR_MAP, AGivenPixelTypeOverridesTheHeader) {
  RASTER_HEADER header = header_2_by_3_;
  header.type = 77;
  header.depth = 0;
  const std::string path = WriteRaster("raster", header, std::string(48, 'x'));
  MEM_MGR raster;
  for (const PIXEL_TYPE type : {PIXEL_TYPE::INT_16, PIXEL_TYPE::RGB, PIXEL_TYPE::C_FLT_6}) {
    raster.Map(path.c_str(), read_only, type);
    EXPECT_EQ(raster.PixelType(), type);
    EXPECT_EQ(raster.DataLength(), 6 * BytesPerPixel(type));
  }
  EXPECT_THROW(raster.Map(path.c_str(), read_only, PIXEL_TYPE::C_FLT_15), ERROR_CAN_NOT_READ_FILE);
  EXPECT_THROW(raster.Map(path.c_str(), read_only, PIXEL_TYPE::OTHERS),
               ERROR_NOT_SUPPORTED_PIXEL_TYPE);
}

TEST_F(MEM_MGR_MAP, FilesThatAreNoRastersAreRefused) {
  const std::string missing = File("missing");
  ExpectRefused<ERROR_CAN_NOT_OPEN_FILE>(missing, "MEM_MGR: can not open: " + missing);
  ExpectAlarm("MEM_MGR: No such file or directory");
  const std::string directory = directory_.Path().string();
  ExpectRefused<ERROR_CAN_NOT_READ_FILE>(directory,
                                         "MEM_MGR: can not read header from: " + directory);
  ExpectRefused<ERROR_CAN_NOT_OPEN_FILE>(directory, "MEM_MGR: can not open: " + directory,
                                         read_write);
  const std::string fifo = File("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  ExpectRefused<ERROR_CAN_NOT_READ_FILE>(fifo, "MEM_MGR: can not read header from: " + fifo);
  const std::string stub = File("stub");
  WriteFile(stub, std::string(31, '\0'));
  ExpectRefused<ERROR_CAN_NOT_READ_FILE>(stub, "MEM_MGR: can not read header from: " + stub);
}

TEST_F(MEM_MGR_MAP, AFileOpenedOnlyForWritingCanNotBeMapped) {
  const std::string path = WriteRaster("raster", header_2_by_3_, "abcdefghijkl");
  ExpectRefused<ERROR_CAN_NOT_READ_FILE>(path, "MEM_MGR: can not read header from: " + path,
                                         O_WRONLY);
}

TEST_F(MEM_MGR_MAP, UnknownPixelTypesAreRefused) {
  RASTER_HEADER header(2, 3, PIXEL_TYPE::U_INT_8);
  header.depth = 24;
  ExpectRefused<ERROR_NOT_SUPPORTED_PIXEL_TYPE>(WriteRaster("depth", header, "123456789012345678"),
                                                "MEM_MGR: unknown pixeltype");
  header.type = 4242;
  header.depth = 8;
  ExpectRefused<ERROR_NOT_SUPPORTED_PIXEL_TYPE>(WriteRaster("type", header, "123456"),
                                                "MEM_MGR: unknown pixeltype");
}

TEST_F(MEM_MGR_MAP, TruncatedFilesAreRefused) {
  const auto refuse = [this](const std::string& path) {
    ExpectRefused<ERROR_CAN_NOT_READ_FILE>(
        path, "MEM_MGR: file is shorter than its header declares: " + path);
  };
  refuse(WriteRaster("pixel", header_2_by_3_, "abcdefghijk"));
  RASTER_HEADER with_colors = header_2_by_3_;
  with_colors.map_type = 1;
  with_colors.map_length = 3;
  refuse(WriteRaster("color", with_colors, "abcdefghijklmn"));
  with_colors.map_length = 0xFFFFFFFF;
  refuse(WriteRaster("long_color", with_colors, "abcdefghijkl"));
  refuse(WriteSparse("large", RASTER_HEADER(70000, 70000, PIXEL_TYPE::U_INT_8),
                     32 + 70000ULL * 70000 - 1));
}

TEST_F(MEM_MGR_MAP, SizesWhoseProductOverflowsAreRefused) {
  // Modulo 2^64 the latter two lengths would be 0.
  for (const auto& [width, height, type] :
       {std::tuple{0xFFFFFFFFU, 0xFFFFFFFFU, PIXEL_TYPE::U_INT_8},
        std::tuple{0x80000000U, 0x80000000U, PIXEL_TYPE::C_INT_16},
        std::tuple{0x80000000U, 0x80000000U, PIXEL_TYPE::C_FLT_15}}) {
    const std::string path = WriteRaster("raster", RASTER_HEADER(width, height, type), "pixels");
    ExpectRefused<ERROR_CAN_NOT_READ_FILE>(
        path, "MEM_MGR: file is shorter than its header declares: " + path);
  }
}

TEST_F(MEM_MGR_MAP, TheLengthWordAndTheMagicAreNotReliedOn) {
  RASTER_HEADER header = header_2_by_3_;
  header.magic = 0;
  header.length = 0;
  MEM_MGR raster;
  raster.Map(WriteRaster("raster", header, "abcdefghijkl and more").c_str(), read_only);
  EXPECT_EQ(Pixels(raster), "abcdefghijkl");
}

TEST_F(MEM_MGR_MAP, ImagesWithoutPixelsAreJustTheirHeader) {
  MEM_MGR raster;
  raster.Map(WriteRaster("empty", RASTER_HEADER(0, 0, PIXEL_TYPE::FLT_6), "").c_str(), read_only);
  EXPECT_NE(raster.Data(), nullptr);
  EXPECT_EQ(raster.Width(), 0);
  EXPECT_EQ(raster.Height(), 0);
  // A row table of this height would take 32 GiB.
  raster.Map(WriteRaster("tall", RASTER_HEADER(0, 0xFFFFFFFF, PIXEL_TYPE::FLT_6), "").c_str(),
             read_only);
  EXPECT_EQ(raster.Height(), 0xFFFFFFFF);
  EXPECT_EQ(raster.DataLength(), 0);
}

TEST_F(MEM_MGR_MAP, RawFilesAreBytesWithinTheGivenBounds) {
  WriteFile(File("raw"), "abcdefghijkl");
  MEM_MGR raster;
  raster.MapRaw(File("raw").c_str(), 10, 20, 13, 22, read_write);
  EXPECT_EQ(raster.PixelType(), PIXEL_TYPE::U_INT_8);
  EXPECT_EQ(raster.Width(), 4);
  EXPECT_EQ(raster.Height(), 3);
  EXPECT_EQ(Pixels(raster), "abcdefghijkl");
  EXPECT_EQ(raster.Rows<char>()[21][12], 'g');
  raster.Rows<char>()[22][13] = 'L';
  EXPECT_EQ(ReadFile(File("raw")), "abcdefghijkL");
}

TEST_F(MEM_MGR_MAP, RawFilesThatCanNotBeMappedAreRefused) {
  const std::string path = File("raw");
  MEM_MGR raster;
  EXPECT_THROW(raster.MapRaw(path.c_str(), 0, 0, 0, 0, read_only), ERROR_CAN_NOT_OPEN_FILE);
  ExpectAlarm("MEM_MGR: can not open: " + path);
  WriteFile(path, "abcdefghijkl");
  EXPECT_THROW(raster.MapRaw(path.c_str(), 0, 0, 0, -1, read_only), ERROR_CAN_NOT_MMAP);
  ExpectAlarm("MEM_MGR: mmap: mmap failed..");
  ExpectAlarm("MEM_MGR: Invalid argument");
  EXPECT_THROW(raster.MapRaw(path.c_str(), 0, 0, 11, 0, O_WRONLY), ERROR_CAN_NOT_MMAP);
  ExpectAlarm("MEM_MGR: Permission denied");
  constexpr std::int64_t far = std::int64_t{1} << 61;
  EXPECT_THROW(raster.MapRaw(path.c_str(), 0, 0, far - 1, 0, read_only), ERROR_CAN_NOT_MMAP);
  EXPECT_THROW(raster.MapRaw(path.c_str(), 0, 0, far, 7, read_only), ERROR_ARGUMENT);
  EXPECT_THROW(raster.MapRaw(path.c_str(), 0, 0, -2, 0, read_only), ERROR_ARGUMENT);
  EXPECT_THROW(raster.MapRaw(path.c_str(), INT64_MIN, 0, INT64_MAX, 0, read_only), ERROR_ARGUMENT);
  EXPECT_EQ(raster.Data(), nullptr);
}

TEST_F(MEM_MGR_MAP, NoDescriptorIsLeftOpen) {
  const std::string good = WriteRaster("good", header_2_by_3_, "abcdefghijkl");
  const std::string truncated = WriteRaster("truncated", header_2_by_3_, "");
  const auto before = OpenFiles();
  {
    MEM_MGR raster;
    for (int i = 0; i < 3; ++i) {
      raster.Map(good.c_str(), read_only);
      EXPECT_THROW(raster.Map(truncated.c_str(), read_only), ERROR_CAN_NOT_READ_FILE);
      EXPECT_THROW(raster.MapRaw(good.c_str(), 0, 0, -1, -1, read_only), ERROR_CAN_NOT_MMAP);
      raster.Create(File("new").c_str(), 0, 0, 3, 3, PIXEL_TYPE::RGB);
    }
  }
  EXPECT_EQ(OpenFiles(), before);
}

}  // namespace
