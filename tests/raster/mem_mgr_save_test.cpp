#include <sys/stat.h>

#include "base/error_exception.h"
#include "raster_test.h"

namespace {

class MEM_MGR_SAVE : public RASTER_TEST {
 protected:
  static constexpr mode_t permissions = 0640;
};

TEST_F(MEM_MGR_SAVE, SavesImagesOfEveryTypeAsRasterFiles) {
  for (const PIXEL_TYPE type : all_pixel_types) {
    MEM_MGR raster;
    raster.CreateInMemory(1, 1, 3, 5, type);
    for (std::int64_t i = 0; i < raster.DataLength(); ++i) {
      raster.Data()[i] = static_cast<unsigned char>(7 * i);
    }
    raster.Save(File("saved").c_str(), permissions);
    EXPECT_EQ(ReadFile(File("saved")), Raster(RASTER_HEADER(3, 5, type), Pixels(raster)))
        << static_cast<int>(type);
  }
}

TEST_F(MEM_MGR_SAVE, LeavesTheColorMapOutAndSetsPermissions) {
  const std::string file = WriteRaster(
      "raster",
      [] {
        RASTER_HEADER header(2, 1, PIXEL_TYPE::U_INT_8);
        header.map_type = 1;
        header.map_length = 3;
        return header;
      }(),
      "rgbxy");
  MEM_MGR raster;
  raster.Map(file.c_str(), read_only);
  const mode_t mask = ::umask(0);
  raster.Save(File("saved").c_str(), permissions);
  raster.WriteRaw(File("raw").c_str(), permissions);
  ::umask(mask);
  EXPECT_EQ(ReadFile(File("saved")), Raster(RASTER_HEADER(2, 1, PIXEL_TYPE::U_INT_8), "xy"));
  for (const char* name : {"saved", "raw"}) {
    struct stat status {};
    ASSERT_EQ(::stat(File(name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, permissions) << name;
  }
}

TEST_F(MEM_MGR_SAVE, RawFilesHoldWidthTimesHeightBytes) {
  MEM_MGR raster;
  raster.CreateInMemory(0, 0, 2, 1, PIXEL_TYPE::INT_16);
  for (unsigned char i = 0; i < 12; ++i) {
    raster.Data()[i] = static_cast<unsigned char>('a' + i);
  }
  raster.WriteRaw(File("raw").c_str(), permissions);
  EXPECT_EQ(ReadFile(File("raw")), "abcdef") << "of wider pixels only so many bytes";
  MEM_MGR bytes;
  bytes.MapRaw(File("raw").c_str(), 0, 0, 2, 1, read_only);
  bytes.WriteRaw(File("again").c_str(), permissions);
  EXPECT_EQ(ReadFile(File("again")), "abcdef");
  raster.CreateInMemory(0, 0, -1, -1, PIXEL_TYPE::U_INT_8);
  raster.WriteRaw(File("again").c_str(), permissions);
  EXPECT_EQ(ReadFile(File("again")), "") << "replaced by an image without pixels";
}

TEST_F(MEM_MGR_SAVE, ImagesBeyondWhatOneWriteTakesAreWrittenWhole) {
  MEM_MGR raster;
  raster.CreateInMemory(0, 0, (3LL << 30) - 1, 0, PIXEL_TYPE::U_INT_8);
  EXPECT_NO_THROW(raster.WriteRaw("/dev/null", permissions));
}

TEST_F(MEM_MGR_SAVE, AnEmptyManagerHasNothingToSave) {
  const MEM_MGR raster;
  WriteFile(File("saved"), "precious");
  EXPECT_THROW(raster.Save(File("saved").c_str(), permissions), ERROR_ALGORITHM);
  EXPECT_THROW(raster.WriteRaw(File("saved").c_str(), permissions), ERROR_ALGORITHM);
  ExpectAlarm("MEM_MGR: unknown data type");
  EXPECT_EQ(ReadFile(File("saved")), "precious");
}

TEST_F(MEM_MGR_SAVE, AMappedFileIsNotSavedIntoItself) {
  MEM_MGR raster;
  raster.Create(File("raster").c_str(), 0, 0, 9, 9, PIXEL_TYPE::U_INT_8);
  std::filesystem::create_hard_link(File("raster"), File("link"));
  EXPECT_THROW(raster.Save(File("link").c_str(), permissions), ERROR_ARGUMENT);
  EXPECT_THROW(raster.WriteRaw(File("raster").c_str(), permissions), ERROR_ARGUMENT);
  ExpectAlarm("MEM_MGR: can not save a mapped file into itself: " + File("raster"));
  EXPECT_EQ(std::filesystem::file_size(File("raster")), 132U);
}

TEST_F(MEM_MGR_SAVE, FilesThatCanNotBeWrittenAreReported) {
  MEM_MGR raster;
  raster.CreateInMemory(0, 0, 1 << 20, 0, PIXEL_TYPE::INT_16);
  for (const std::string& path : {std::string("/dev/full"), directory_.Path().string()}) {
    EXPECT_THROW(raster.Save(path.c_str(), permissions), ERROR_CAN_NOT_WRITE_FILE);
    ExpectAlarm("MEM_MGR: can not save header for " + path);
    EXPECT_THROW(raster.WriteRaw(path.c_str(), permissions), ERROR_CAN_NOT_WRITE_FILE);
    ExpectAlarm("MEM_MGR: unable to write into: " + path);
  }
  const FILE_SIZE_LIMIT limit(1 << 20);
  EXPECT_THROW(raster.Save(File("saved").c_str(), permissions), ERROR_CAN_NOT_WRITE_FILE);
  ExpectAlarm("MEM_MGR: unable to write into: " + File("saved"));
}

}  // namespace
