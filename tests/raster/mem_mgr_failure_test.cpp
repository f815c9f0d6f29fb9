#include <sys/mman.h>
#include <sys/stat.h>

#include <filesystem>
#include <iterator>

#include "raster/system_error_text.h"
#include "raster_test.h"

namespace {

using ALARMS = std::vector<std::string>;

std::ptrdiff_t OpenFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// Operations that fail. None leaves a descriptor open.
class MEM_MGR_FAILURE : public RASTER_TEST {
 protected:
  ~MEM_MGR_FAILURE() override {
    raster_.Unmap();
    EXPECT_EQ(OpenFiles(), open_files_);
  }

  /// Expects the failure with these alarms as the end of the log.
  template <class ERROR, class OPERATION>
  void ExpectFailure(OPERATION operation, const ALARMS& alarms) const {
    EXPECT_THROW(operation(), ERROR);
    std::string end;
    for (const std::string& alarm : alarms) {
      end += "ALARM : " + alarm + "\n";
    }
    EXPECT_TRUE(log_.Text().ends_with(end)) << end << "is not the end of\n" << log_.Text();
  }

  /// The same of an operation that was to hold an image in place of another one.
  template <class ERROR, class OPERATION>
  void ExpectEmptied(OPERATION operation, const ALARMS& alarms) {
    raster_.CreateInMemory(0, 0, 1, 1, PIXEL_TYPE::U_INT_8);
    ExpectFailure<ERROR>(operation, alarms);
    EXPECT_EQ(raster_.Data(), nullptr);
    EXPECT_EQ(raster_.DataLength(), 0);
    EXPECT_EQ(raster_.PixelType(), PIXEL_TYPE::OTHERS);
    EXPECT_THROW(raster_.Rows<char>(), ERROR_ALGORITHM);
  }

  void ExpectTooShort(const std::string& path) {
    ExpectEmptied<ERROR_CAN_NOT_READ_FILE>(
        [&] { raster_.Map(path.c_str(), O_RDONLY); },
        {"MEM_MGR: file is shorter than its header declares: " + path});
  }

  const std::ptrdiff_t open_files_ = OpenFiles();
};

TEST_F(MEM_MGR_FAILURE, OfFilesThatAreNoReadableRasters) {
  const std::string path = WriteRaster("raster", RASTER_HEADER(1, 1, PIXEL_TYPE::U_INT_8), "p");
  const std::string fifo = File("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  for (const auto& [name, mode] : {std::pair{fifo, O_RDONLY}, {path, O_WRONLY}}) {
    ExpectEmptied<ERROR_CAN_NOT_READ_FILE>([&, m = mode] { raster_.Map(name.c_str(), m); },
                                           {"MEM_MGR: can not read header from: " + name});
  }
  ExpectEmptied<ERROR_NOT_SUPPORTED_PIXEL_TYPE>(
      [&] { raster_.Map(path.c_str(), O_RDONLY, PIXEL_TYPE::OTHERS); },
      {"MEM_MGR: unknown pixeltype"});
}

TEST_F(MEM_MGR_FAILURE, OfFilesThatAreTooShort) {
  RASTER_HEADER header(2, 3, PIXEL_TYPE::INT_16);
  ExpectTooShort(WriteRaster("pixel", header, "abcdefghijk"));
  header.map_length = 3;
  ExpectTooShort(WriteRaster("color", header, "abcdefghijklmn"));
  header.map_length = 0xFFFFFFFF;
  ExpectTooShort(WriteRaster("long_color", header, "abcdefghijkl"));
  // Modulo 2^64 the latter two lengths would be 0.
  for (const auto& [side, type] : {std::pair{0xFFFFFFFFU, PIXEL_TYPE::U_INT_8},
                                   {0x80000000U, PIXEL_TYPE::C_INT_16},
                                   {0x80000000U, PIXEL_TYPE::C_FLT_15}}) {
    ExpectTooShort(WriteRaster("overflow", RASTER_HEADER(side, side, type), "pixels"));
  }
}

TEST_F(MEM_MGR_FAILURE, OfRawFiles) {
  const std::string path = File("raw");
  const auto map = [&](std::int64_t last_column, std::int64_t last_row, int access_mode) {
    return [=, this] { raster_.MapRaw(path.c_str(), 0, 0, last_column, last_row, access_mode); };
  };
  ExpectEmptied<ERROR_CAN_NOT_OPEN_FILE>(
      map(0, 0, O_RDONLY),
      {"MEM_MGR: can not open: " + path, "MEM_MGR: No such file or directory"});
  WriteFile(path, "abcdefghijkl");
  const std::string failed = "MEM_MGR: mmap: mmap failed..";
  ExpectEmptied<ERROR_CAN_NOT_MMAP>(map(0, -1, O_RDONLY), {failed, "MEM_MGR: Invalid argument"});
  for (const int access_mode : {O_WRONLY, O_ACCMODE}) {
    ExpectEmptied<ERROR_CAN_NOT_MMAP>(map(11, 0, access_mode),
                                      {failed, "MEM_MGR: Permission denied"});
  }
  ExpectEmptied<ERROR_ARGUMENT>(map(-2, 0, O_RDONLY),
                                {"MEM_MGR: impossible image bounds: columns 0 .. -2, rows 0 .. 0"});
}

TEST_F(MEM_MGR_FAILURE, OfBoundsAndTypesTouchesNoFile) {
  const std::string path = File("raster");
  WriteFile(path, "precious");
  const auto create = [&](std::int64_t last_column, std::int64_t last_row, PIXEL_TYPE type) {
    return [=, this] { raster_.Create(path.c_str(), 0, 0, last_column, last_row, type); };
  };
  ExpectEmptied<ERROR_NOT_SUPPORTED_PIXEL_TYPE>(create(1, 1, PIXEL_TYPE::OTHERS),
                                                {"MEM_MGR: unknown pixeltype"});
  const auto impossible = [](const std::string& columns, const std::string& rows) {
    return ALARMS{"MEM_MGR: impossible image bounds: columns " + columns + ", rows " + rows};
  };
  ExpectEmptied<ERROR_ARGUMENT>(create(-2, 1, PIXEL_TYPE::U_INT_8),
                                impossible("0 .. -2", "0 .. 1"));
  ExpectEmptied<ERROR_ARGUMENT>(
      [&] { raster_.CreateInMemory(0, INT64_MIN, 0, INT64_MAX, PIXEL_TYPE::U_INT_8); },
      impossible("0 .. 0", "-9223372036854775808 .. 9223372036854775807"));
  const std::string too_large = "MEM_MGR: image is too large for a raster header: ";
  ExpectEmptied<ERROR_ARGUMENT>(create(0xFFFFFFFF, 0, PIXEL_TYPE::U_INT_8),
                                {too_large + "4294967296x1 with 0 colours"});
  COLOR_MAP map;
  map.entries = 0x55555556;  // x 3 = 2^32 + 2
  ExpectEmptied<ERROR_ARGUMENT>(
      [&] { raster_.Create(path.c_str(), 0, 0, 0, 0, PIXEL_TYPE::U_INT_8, map); },
      {too_large + "1x1 with 1431655766 colours"});
  EXPECT_EQ(ReadFile(path), "precious");
}

TEST_F(MEM_MGR_FAILURE, OfMemory) {
  const ALARMS alarms = {"MEM_MGR: can not allocate memory"};
  ExpectEmptied<ERROR_NO_MEMORY>(
      [&] { raster_.CreateInMemory(0, 0, std::int64_t{1} << 60, 0, PIXEL_TYPE::U_INT_8); }, alarms);
// The sanitizers have no room for so many addresses.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  WriteFile(File("raw"), "x");
  ExpectFailure<ERROR_NO_MEMORY>(
      [&] { raster_.MapRaw(File("raw").c_str(), 0, 0, 0, (1LL << 45) - 1, O_RDONLY); }, alarms);
  EXPECT_THROW(raster_.Rows<char>(), ERROR_ALGORITHM);
#endif
}

TEST_F(MEM_MGR_FAILURE, OfFilesThatCanNotBeCreated) {
  const std::string directory = directory_.Path().string();
  const auto create = [&](const std::string& path, auto type) {
    return [=, this] { raster_.Create(path.c_str(), 0, 0, 1, 1, type); };
  };
  ExpectEmptied<ERROR_CAN_NOT_CREATE_FILE>(
      create(directory, PIXEL_TYPE::RGB),
      {"MEM_MGR: can not create: " + directory + ": Is a directory",
       "EISDIR: see: man page of open"});
  EXPECT_EQ(OpenErrorText(ETXTBSY), "open unknown system error code");
  ExpectEmptied<ERROR_CAN_NOT_CREATE_FILE>(
      create(directory, DataTypeOf(PIXEL_TYPE::RGB)),
      {"unable to open file: " + directory, "MEM_MGR: Is a directory"});
  ExpectEmptied<ERROR_CAN_NOT_WRITE_FILE>(create("/dev/full", PIXEL_TYPE::RGB),
                                          {"MEM_MGR: can not write: /dev/full: No space left on "
                                           "device",
                                           "can not write to file 32 [bytes]"});
  ExpectEmptied<ERROR_CAN_NOT_WRITE_FILE>(
      create("/dev/null", PIXEL_TYPE::RGB),
      {"MEM_MGR: can not extend: /dev/null", "MEM_MGR: Invalid argument"});
}

TEST_F(MEM_MGR_FAILURE, OfOtherOperationsKeepsTheImage) {
  const std::string path = File("raster");
  const auto save = [&](const std::string& to) {
    return [=, this] { raster_.Save(to.c_str(), 0666); };
  };
  const auto write_raw = [&](const std::string& to) {
    return [=, this] { raster_.WriteRaw(to.c_str(), 0666); };
  };
  WriteFile(path, "precious");
  EXPECT_THROW(raster_.GetNumRecMatrix<char>(0, 0), ERROR_ALGORITHM);
  const std::string nothing = "MEM_MGR: unknown data type";
  ExpectFailure<ERROR_ALGORITHM>(save(path), {nothing});
  ExpectFailure<ERROR_ALGORITHM>(write_raw(path), {nothing});
  EXPECT_EQ(ReadFile(path), "precious");

  raster_.Create(path.c_str(), 0, 0, 9, 9, PIXEL_TYPE::U_INT_8);
  std::filesystem::create_hard_link(path, File("link"));
  for (const std::string& same : {path, File("link")}) {
    const std::string itself = "MEM_MGR: can not save a mapped file into itself: " + same;
    ExpectFailure<ERROR_ARGUMENT>(save(same), {itself});
    ExpectFailure<ERROR_ARGUMENT>(write_raw(same), {itself});
  }
  for (const std::string& to : {std::string("/dev/full"), directory_.Path().string()}) {
    ExpectFailure<ERROR_CAN_NOT_WRITE_FILE>(save(to), {"MEM_MGR: can not save header for " + to});
    const ALARMS alarms = {"MEM_MGR: unable to write into: " + to};
    ExpectFailure<ERROR_CAN_NOT_WRITE_FILE>(write_raw(to), alarms);
  }
  ExpectFailure<ERROR_CAN_NOT_MSYNC>(
      [&] { raster_.Sync(MS_SYNC | MS_ASYNC); },
      {"MEM_MGR: msync error ..",
       "EINVAL: addr is not a multiple of the page size or wrong flag .."});
  ExpectFailure<ERROR_ARGUMENT>([&] { raster_.Advise(0); },
                                {"MEM_MGR: less than one page per madvise call: 0"});
  EXPECT_EQ(ReadFile(path),
            Raster(RASTER_HEADER(10, 10, PIXEL_TYPE::U_INT_8), std::string(100, '\0')));
  EXPECT_EQ(raster_.DataLength(), 100) << "still held";
}

}  // namespace
