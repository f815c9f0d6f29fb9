#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>

#include "base/error_exception.h"
#include "raster/system_error_text.h"
#include "raster_test.h"

namespace {

class MEM_MGR_CREATE : public RASTER_TEST {};

TEST_F(MEM_MGR_CREATE, AFileIsItsHeaderAndZeros) {
  for (const PIXEL_TYPE type : all_pixel_types) {
    MEM_MGR raster;
    raster.Create(File("raster").c_str(), 0, 0, 2, 4, type);
    EXPECT_EQ(raster.PixelType(), type);
    EXPECT_EQ(raster.Width(), 3);
    EXPECT_EQ(raster.Height(), 5);
    const std::string zeros(static_cast<std::size_t>(3 * 5 * BytesPerPixel(type)), '\0');
    EXPECT_EQ(ReadFile(File("raster")), Raster(RASTER_HEADER(3, 5, type), zeros))
        << "type " << static_cast<int>(type);
  }
}

TEST_F(MEM_MGR_CREATE, BothFormsOfThePixelTypeMakeTheSameFile) {
  MEM_MGR raster;
  raster.Create(File("code").c_str(), 5, 6, 14, 8, PIXEL_TYPE::C_FLT_2);
  raster.Create(File("data_type").c_str(), 5, 6, 14, 8, DataTypeOf(PIXEL_TYPE::C_FLT_2));
  EXPECT_EQ(ReadFile(File("code")), ReadFile(File("data_type")));
  EXPECT_EQ(raster.Bounds().first_column, 0) << "a file counts from 0";
  EXPECT_EQ(raster.Bounds().last_column, 9);
  EXPECT_EQ(raster.Bounds().last_row, 2);
  EXPECT_TRUE(log_.Has("DEBUG : creating file with dimensions 10x3"));
}

TEST_F(MEM_MGR_CREATE, WrittenPixelsAreReadBack) {
  MEM_MGR raster;
  const std::string path = File("raster");
  raster.Create(path.c_str(), 0, 0, 2, 1, PIXEL_TYPE::C_INT_16);
  for (unsigned char i = 0; i < 24; ++i) {
    raster.Data()[i] = static_cast<unsigned char>(100 + i);
  }
  const std::string written = Pixels(raster);
  raster.Map(path.c_str(), read_only);
  EXPECT_EQ(Pixels(raster), written);
}

TEST_F(MEM_MGR_CREATE, AnExistingFileIsReplaced) {
  const std::string path = File("raster");
  WriteFile(path, std::string(1000, 'x'));
  MEM_MGR raster;
  raster.Create(path.c_str(), 0, 0, 2, 0, PIXEL_TYPE::U_INT_8);
  EXPECT_EQ(ReadFile(path), Raster(RASTER_HEADER(3, 1, PIXEL_TYPE::U_INT_8), std::string(3, '\0')));
  raster.Create(path.c_str(), 0, 0, -1, -1, PIXEL_TYPE::RGB);
  EXPECT_EQ(ReadFile(path), Raster(RASTER_HEADER(0, 0, PIXEL_TYPE::RGB), ""));
}

TEST_F(MEM_MGR_CREATE, FilesBeyond4GiBAreSparse) {
  constexpr std::int64_t side = 70000;
  constexpr std::int64_t length = side * side * 4;
  const std::string path = File("large");
  MEM_MGR raster;
  raster.Create(path.c_str(), 0, 0, side - 1, side - 1, PIXEL_TYPE::INT_32);
  raster.Rows<std::int32_t>()[side - 1][side - 1] = 0x01020304;
  raster.Unmap();

  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_size, 32 + length);
  EXPECT_LT(status.st_blocks, 1024);
  raster.Map(path.c_str(), read_only);
  EXPECT_EQ(raster.DataLength(), length);
  EXPECT_EQ(raster.Rows<std::int32_t>()[side - 1][side - 1], 0x01020304);
  EXPECT_EQ(raster.Rows<std::int32_t>()[side - 1][side - 2], 0);
  EXPECT_EQ(raster.Data()[length - 1], 1);
}

TEST_F(MEM_MGR_CREATE, RowsBeyond4GiBAreAddressed) {
  constexpr std::int64_t width = 0xFFFFFFFF;
  MEM_MGR raster;
  raster.Create(File("wide").c_str(), 0, 0, width - 1, 1, PIXEL_TYPE::U_INT_8);
  raster.Rows<char>()[1][width - 1] = 'x';
  EXPECT_EQ(std::filesystem::file_size(File("wide")), 32 + 2 * static_cast<std::uint64_t>(width));
  EXPECT_EQ(raster.Data()[2 * width - 1], 'x');
}

TEST_F(MEM_MGR_CREATE, WhatCanNotBeCreatedTouchesNoFile) {
  const std::string path = File("raster");
  WriteFile(path, "precious");
  MEM_MGR raster;
  const auto create = [&](std::int64_t last_column, std::int64_t last_row, PIXEL_TYPE type) {
    raster.Create(path.c_str(), 0, 0, last_column, last_row, type);
  };
  EXPECT_THROW(create(1, 1, PIXEL_TYPE::OTHERS), ERROR_NOT_SUPPORTED_PIXEL_TYPE);
  EXPECT_THROW(create(1, 1, static_cast<PIXEL_TYPE>(13)), ERROR_NOT_SUPPORTED_PIXEL_TYPE);
  ExpectAlarm("MEM_MGR: unknown pixeltype");
  BASIC::TYPES::DataType flt_30;
  flt_30.Assign("flt_30");
  EXPECT_THROW(raster.Create(path.c_str(), 0, 0, 1, 1, flt_30), ERROR_NOT_SUPPORTED_PIXEL_TYPE);
  EXPECT_THROW(create(-2, 1, PIXEL_TYPE::U_INT_8), ERROR_ARGUMENT);
  ExpectAlarm("MEM_MGR: impossible image bounds: columns 0 .. -2, rows 0 .. 1");
  EXPECT_THROW(create(INT64_MAX, 0, PIXEL_TYPE::U_INT_8), ERROR_ARGUMENT);
  EXPECT_THROW(create(0xFFFFFFFE, 0xFFFFFFFE, PIXEL_TYPE::C_FLT_15), ERROR_ARGUMENT);
  EXPECT_THROW(create(0x100000000 - 1, 0, PIXEL_TYPE::U_INT_8), ERROR_ARGUMENT);
  ExpectAlarm("MEM_MGR: image is too large for a raster header: 4294967296x1 with 0 colours");
  EXPECT_EQ(ReadFile(path), "precious");
  EXPECT_EQ(raster.Data(), nullptr);
}

TEST_F(MEM_MGR_CREATE, FilesThatCanNotBeOpenedAreReported) {
  MEM_MGR raster;
  WriteFile(File("file"), "");
  const std::string directory = directory_.Path().string();
  for (const auto& [path, line] :
       {std::pair{directory, "EISDIR: see: man page of open"},
        std::pair{File("missing/raster"), "ENOENT: see: man page of open"},
        std::pair{File("file/raster"), "ENOTDIR: see: man page of open"},
        std::pair{File(std::string(300, 'x').c_str()), "ENAMETOOLONG: see: man page of open"}}) {
    EXPECT_THROW(raster.Create(path.c_str(), 0, 0, 1, 1, PIXEL_TYPE::RGB),
                 ERROR_CAN_NOT_CREATE_FILE);
    ExpectAlarm(line);
    ExpectAlarm("MEM_MGR: can not create: " + path);
  }
  EXPECT_EQ(OpenErrorText(ETXTBSY), "open unknown system error code");

  EXPECT_THROW(raster.Create(directory.c_str(), 0, 0, 1, 1, DataTypeOf(PIXEL_TYPE::RGB)),
               ERROR_CAN_NOT_CREATE_FILE);
  ExpectAlarm("unable to open file: " + directory);
  ExpectAlarm("MEM_MGR: Is a directory");
}

TEST_F(MEM_MGR_CREATE, AFullDiskIsReported) {
  MEM_MGR raster;
  EXPECT_THROW(raster.Create("/dev/full", 0, 0, 1, 1, PIXEL_TYPE::RGB), ERROR_CAN_NOT_WRITE_FILE);
  ExpectAlarm("can not write to file 32 [bytes]");

  const FILE_SIZE_LIMIT limit(1 << 20);
  const std::string path = File("raster");
  EXPECT_THROW(raster.Create(path.c_str(), 0, 0, 1 << 20, 0, PIXEL_TYPE::RGB),
               ERROR_CAN_NOT_WRITE_FILE);
  ExpectAlarm("MEM_MGR: can not extend: " + path);
  ExpectAlarm("MEM_MGR: File too large");
}

TEST_F(MEM_MGR_CREATE, MemoryImagesAreZerosWithTheGivenBounds) {
  MEM_MGR raster;
  raster.CreateInMemory(-5, 7, 4, 9, PIXEL_TYPE::C_FLT_6);
  EXPECT_EQ(raster.Width(), 10);
  EXPECT_EQ(raster.Height(), 3);
  EXPECT_EQ(raster.Bounds().first_column, -5);
  EXPECT_EQ(raster.Bounds().last_row, 9);
  EXPECT_EQ(Pixels(raster), std::string(240, '\0'));
  raster.Unmap();
  EXPECT_EQ(raster.Data(), nullptr);
  EXPECT_TRUE(log_.Has("DEBUG : MEM_MGR: delete image memory .."));
}

TEST_F(MEM_MGR_CREATE, MemoryImagesMayBeEmptyButNotImpossible) {
  MEM_MGR raster;
  raster.CreateInMemory(0, 0, -1, -1, PIXEL_TYPE::U_INT_8);
  EXPECT_NE(raster.Data(), nullptr);
  EXPECT_EQ(raster.DataLength(), 0);
  EXPECT_THROW(raster.CreateInMemory(0, 0, 0, 0, PIXEL_TYPE::OTHERS),
               ERROR_NOT_SUPPORTED_PIXEL_TYPE);
  EXPECT_THROW(raster.CreateInMemory(0, 0, -2, 0, PIXEL_TYPE::U_INT_8), ERROR_ARGUMENT);
  EXPECT_THROW(raster.CreateInMemory(0, 0, INT64_MAX / 2, 1, PIXEL_TYPE::FLT_2), ERROR_ARGUMENT);
  EXPECT_THROW(raster.CreateInMemory(0, 0, std::int64_t{1} << 60, 0, PIXEL_TYPE::U_INT_8),
               ERROR_NO_MEMORY);
  ExpectAlarm("MEM_MGR: can not allocate memory");
}

TEST_F(MEM_MGR_CREATE, SyncCarriesAMappedFileOver) {
  MEM_MGR raster;
  raster.Sync(MS_SYNC | MS_ASYNC);  // nothing is held, so that even bad flags do not matter
  raster.CreateInMemory(0, 0, 3, 3, PIXEL_TYPE::U_INT_8);
  raster.Sync(MS_SYNC | MS_ASYNC);
  raster.Create(File("raster").c_str(), 0, 0, 999, 999, PIXEL_TYPE::U_INT_8);
  raster.Data()[999999] = 'x';
  raster.Sync(MS_SYNC);
  EXPECT_EQ(ReadFile(File("raster")).back(), 'x');
  EXPECT_THROW(raster.Sync(MS_SYNC | MS_ASYNC), ERROR_CAN_NOT_MSYNC);
  ExpectAlarm("MEM_MGR: msync error ..");
  ExpectAlarm("EINVAL: addr is not a multiple of the page size or wrong flag ..");
  EXPECT_EQ(raster.Data()[999999], 'x') << "still held";
}

TEST_F(MEM_MGR_CREATE, AdviseOnlyLogsItsPlan) {
  MEM_MGR raster;
  raster.Create(File("raster").c_str(), 0, 0, 4095, 9, PIXEL_TYPE::U_INT_8);
  raster.Advise(2);  // (32 + 40960) / (2 x 4096)
  EXPECT_TRUE(log_.Has("DEBUG : MEM_MGR: making 5 madvise calls")) << log_.Text();
  EXPECT_TRUE(log_.Has("DEBUG : MEM_MGR: madvise completed"));
  EXPECT_THROW(raster.Advise(0), ERROR_ARGUMENT);
  ExpectAlarm("MEM_MGR: less than one page per madvise call: 0");
}

}  // namespace
