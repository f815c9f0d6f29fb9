#include "raster/mem_mgr.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <new>
#include <utility>

#include "base/array.h"
#include "base/error_exception.h"
#include "logging/logging.h"
#include "raster/creation_error.h"
#include "raster/raster_header.h"
#include "raster/system_error_text.h"
#include "system/c_locale.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr int create_flags = O_RDWR | O_CREAT | O_TRUNC;

int ProtectionOf(int access_mode) {
  switch (access_mode) {
    case O_RDONLY:
      return PROT_READ;
    case O_WRONLY:
      return PROT_WRITE;
    case O_RDWR:
      return PROT_READ | PROT_WRITE;
    default:
      return PROT_NONE;
  }
}

void LogSystemError(int error) {
  Log() << ALARM << "MEM_MGR: " << SystemErrorText(error);
}

void LogAccess(const char* path, int access_mode, std::optional<PIXEL_TYPE> pixel_type) {
  Log() << DEBUG << "map file with access mode " << access_mode;
  const int protection = ProtectionOf(access_mode);
  if (pixel_type == PIXEL_TYPE::FLT_2 || pixel_type == PIXEL_TYPE::FLT_6) {
    Log() << DEBUG << "map file <" << path << "> with prot flag " << protection;
  } else {
    Log() << DEBUG << "map file with prot flag " << protection;
  }
}

FILE_DESCRIPTOR OpenExisting(const char* path, int access_mode) {
  FILE_DESCRIPTOR file(path, access_mode);
  if (!file.IsOpen()) {
    const int error = errno;
    Log() << ALARM << "MEM_MGR: can not open: " << path;
    LogSystemError(error);
    throw ERROR_CAN_NOT_OPEN_FILE();
  }
  return file;
}

void LogNoMemory() {
  Log() << ALARM << "MEM_MGR: can not allocate memory";
}

RASTER_HEADER ReadHeader(const FILE_DESCRIPTOR& file, const char* path) {
  RASTER_HEADER::BYTES bytes{};
  if (!file.ReadStart(bytes.data(), bytes.size())) {
    Log() << ALARM << "MEM_MGR: can not read header from: " << path;
    throw ERROR_CAN_NOT_READ_FILE();
  }
  return RASTER_HEADER(bytes);
}

void CheckPixelType(PIXEL_TYPE pixel_type) {
  if (BytesPerPixel(pixel_type) == 0) {
    Log() << ALARM << "MEM_MGR: unknown pixeltype";
    throw ERROR_NOT_SUPPORTED_PIXEL_TYPE();
  }
}

/// Length of the pixel block that the header declares, once the file is known to hold it.
std::int64_t CheckLength(const FILE_DESCRIPTOR& file, const char* path, const RASTER_HEADER& header,
                         const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type) {
  const auto block_length = PixelBlockLength(bounds, BytesPerPixel(pixel_type));
  const auto file_length = file.Length();
  if (!block_length || !file_length || *file_length - header.PixelOffset() < *block_length) {
    Log() << ALARM << "MEM_MGR: file is shorter than its header declares: " << path;
    throw ERROR_CAN_NOT_READ_FILE();
  }
  return *block_length;
}

/// Length of the pixel block of an image with these bounds.
std::int64_t CheckBounds(const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type) {
  const auto block_length = PixelBlockLength(bounds, BytesPerPixel(pixel_type));
  // A file or mapping is longer than its pixel block by the header and a colour map, which take
  // less than 8 GiB.
  constexpr std::int64_t longest =
      std::numeric_limits<std::int64_t>::max() - (std::int64_t{1} << 33);
  if (!block_length || *block_length > longest) {
    Log() << ALARM << "MEM_MGR: impossible image bounds: columns " << bounds.first_column << " .. "
          << bounds.last_column << ", rows " << bounds.first_row << " .. " << bounds.last_row;
    throw ERROR_ARGUMENT();
  }
  return *block_length;
}

RASTER_HEADER MakeHeader(const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type,
                         std::uint32_t color_map_entries) {
  constexpr std::int64_t largest = std::numeric_limits<std::uint32_t>::max();
  const std::int64_t map_length = std::int64_t{3} * color_map_entries;
  if (bounds.Width() > largest || bounds.Height() > largest || map_length > largest) {
    Log() << ALARM << "MEM_MGR: image is too large for a raster header: " << bounds.Width() << "x"
          << bounds.Height() << " with " << color_map_entries << " colours";
    throw ERROR_ARGUMENT();
  }
  RASTER_HEADER header(static_cast<std::uint32_t>(bounds.Width()),
                       static_cast<std::uint32_t>(bounds.Height()), pixel_type);
  header.map_type = map_length > 0 ? 1 : 0;
  header.map_length = static_cast<std::uint32_t>(map_length);
  return header;
}

void CopyPlanes(const COLOR_MAP& from, unsigned char* planes) {
  for (const unsigned char* plane : {from.red, from.green, from.blue}) {
    std::copy_n(plane, from.entries, planes);
    planes += from.entries;
  }
}

/// What a new raster file begins with, and the length of what follows the header.
struct NEW_RASTER {
  RASTER_HEADER header;
  std::int64_t block_length;
};

NEW_RASTER MakeNewRaster(const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type,
                         std::uint32_t color_map_entries) {
  CheckPixelType(pixel_type);
  const std::int64_t block_length = CheckBounds(bounds, pixel_type);
  return {MakeHeader(bounds, pixel_type, color_map_entries), block_length};
}

void LogCreationError(const char* path, int error) {
  Log() << ALARM << "MEM_MGR: can not create: " << path << ": " << SystemErrorText(error);
  Log() << ALARM << OpenErrorText(error);
}

/// A sparse file finds its disk full only as its pixels are written, which can be hours later.
void WarnOfSmallDisk(const FILE_DESCRIPTOR& file, const char* path, std::int64_t length) {
  const auto free_space = file.FreeSpace();
  if (free_space && *free_space < length) {
    Log() << WARNING << "MEM_MGR: " << path << " may need " << length
          << " bytes, its disk has room for " << *free_space;
  }
}

[[noreturn]] void ThrowSyncError(int error) {
  Log() << ALARM << "MEM_MGR: msync error ..";
  Log() << ALARM << SyncErrorText(error);
  throw ERROR_CAN_NOT_MSYNC();
}

[[noreturn]] void ThrowNoImage() {
  Log() << ALARM << "MEM_MGR: no memory allocated for GetNumRecMatrix()";
  throw ERROR_ALGORITHM();
}

}  // namespace

void MEM_MGR::Map(const char* path, int access_mode) {
  MapRaster(path, access_mode, std::nullopt);
}

void MEM_MGR::Map(const char* path, int access_mode, PIXEL_TYPE pixel_type) {
  MapRaster(path, access_mode, pixel_type);
  if (pixel_type == PIXEL_TYPE::FLT_2 || pixel_type == PIXEL_TYPE::FLT_6) {
    Log() << DEBUG << "mmap successful";
  }
}

void MEM_MGR::MapRaster(const char* path, int access_mode, std::optional<PIXEL_TYPE> pixel_type) {
  Unmap();
  LogAccess(path, access_mode, pixel_type);
  FILE_DESCRIPTOR file = OpenExisting(path, access_mode);
  const RASTER_HEADER header = ReadHeader(file, path);
  const PIXEL_TYPE type = pixel_type.value_or(header.PixelType());
  CheckPixelType(type);
  const IMAGE_BOUNDS bounds = {0, 0, std::int64_t{header.width} - 1,
                               std::int64_t{header.height} - 1};
  const std::int64_t block_length = CheckLength(file, path, header, bounds, type);
  HoldFile(std::move(file), header.PixelOffset(), block_length, ProtectionOf(access_mode), bounds,
           type);
  const std::uint32_t entries = header.map_length / 3;
  if (entries > 0) {
    color_map_ = COLOR_MAP::FromPlanes(data_ - std::size_t{3} * entries, entries);
  }
}

void MEM_MGR::MapRaw(const char* path, std::int64_t first_column, std::int64_t first_row,
                     std::int64_t last_column, std::int64_t last_row, int access_mode) {
  Unmap();
  const IMAGE_BOUNDS bounds = {first_column, first_row, last_column, last_row};
  const std::int64_t block_length = CheckBounds(bounds, PIXEL_TYPE::U_INT_8);
  LogAccess(path, access_mode, std::nullopt);
  HoldFile(OpenExisting(path, access_mode), 0, block_length, ProtectionOf(access_mode), bounds,
           PIXEL_TYPE::U_INT_8);
}

void MEM_MGR::Create(const char* path, std::int64_t first_column, std::int64_t first_row,
                     std::int64_t last_column, std::int64_t last_row, PIXEL_TYPE pixel_type,
                     const COLOR_MAP& color_map) {
  const IMAGE_BOUNDS bounds = {first_column, first_row, last_column, last_row};
  BeginCreation(bounds, pixel_type, color_map);
  FillFile(OpenOutput(path), bounds, pixel_type, color_map);
}

void MEM_MGR::Create(const char* path, std::int64_t first_column, std::int64_t first_row,
                     std::int64_t last_column, std::int64_t last_row,
                     const BASIC::TYPES::DataType& data_type, const COLOR_MAP& color_map) {
  const IMAGE_BOUNDS bounds = {first_column, first_row, last_column, last_row};
  const PIXEL_TYPE pixel_type = PixelTypeOf(data_type);
  BeginCreation(bounds, pixel_type, color_map);
  RASTER_OUTPUT output(path);
  if (!output.IsOpen()) {
    const int error = errno;
    Log() << ALARM << "unable to open file: " << path;
    LogSystemError(error);
    throw ERROR_CAN_NOT_CREATE_FILE();
  }
  FillFile(std::move(output), bounds, pixel_type, color_map);
}

void MEM_MGR::Create(RASTER_OUTPUT file, std::int64_t first_column, std::int64_t first_row,
                     std::int64_t last_column, std::int64_t last_row, PIXEL_TYPE pixel_type,
                     const COLOR_MAP& color_map) {
  const IMAGE_BOUNDS bounds = {first_column, first_row, last_column, last_row};
  BeginCreation(bounds, pixel_type, color_map);
  FillFile(std::move(file), bounds, pixel_type, color_map);
}

RASTER_OUTPUT MEM_MGR::OpenOutput(const char* path) {
  RASTER_OUTPUT output(path);
  if (!output.IsOpen()) {
    LogCreationError(path, errno);
    throw ERROR_CAN_NOT_CREATE_FILE();
  }
  return output;
}

void MEM_MGR::CheckCreate(const char* path, std::int64_t first_column, std::int64_t first_row,
                          std::int64_t last_column, std::int64_t last_row, PIXEL_TYPE pixel_type) {
  MakeNewRaster({first_column, first_row, last_column, last_row}, pixel_type, 0);
  if (const int error = CreationError(path)) {
    LogCreationError(path, error);
    throw ERROR_CAN_NOT_CREATE_FILE();
  }
}

void MEM_MGR::BeginCreation(const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type,
                            const COLOR_MAP& color_map) {
  Unmap();
  MakeNewRaster(bounds, pixel_type, color_map.entries);
  Log() << DEBUG << "creating file with dimensions " << bounds.Width() << "x" << bounds.Height();
}

void MEM_MGR::FillFile(RASTER_OUTPUT output, const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type,
                       const COLOR_MAP& color_map) {
  const auto [header, block_length] = MakeNewRaster(bounds, pixel_type, color_map.entries);
  const std::string path = output.Path();
  output.Lock();
  FILE_DESCRIPTOR file;
  if (!output.TakeEmpty(file)) {
    LogCreationError(path.c_str(), errno);
    throw ERROR_CAN_NOT_CREATE_FILE();
  }
  const RASTER_HEADER::BYTES bytes = header.Encode();
  if (!file.Write(bytes.data(), bytes.size())) {
    const int error = errno;
    Log() << ALARM << "MEM_MGR: can not write: " << path << ": " << SystemErrorText(error);
    Log() << ALARM << "can not write to file " << bytes.size() << " [bytes]";
    throw ERROR_CAN_NOT_WRITE_FILE();
  }
  if (!file.SetLength(header.PixelOffset() + block_length)) {
    const int error = errno;
    Log() << ALARM << "MEM_MGR: can not extend: " << path;
    LogSystemError(error);
    throw ERROR_CAN_NOT_WRITE_FILE();
  }
  WarnOfSmallDisk(file, path.c_str(), block_length);
  HoldFile(std::move(file), header.PixelOffset(), block_length, PROT_READ | PROT_WRITE,
           {0, 0, bounds.Width() - 1, bounds.Height() - 1}, pixel_type);
  if (color_map.entries > 0) {
    unsigned char* planes = data_ - header.map_length;
    CopyPlanes(color_map, planes);
    color_map_ = COLOR_MAP::FromPlanes(planes, color_map.entries);
  }
  path_ = path;
}

void MEM_MGR::CreateInMemory(std::int64_t first_column, std::int64_t first_row,
                             std::int64_t last_column, std::int64_t last_row,
                             PIXEL_TYPE pixel_type) {
  Unmap();
  CheckPixelType(pixel_type);
  const IMAGE_BOUNDS bounds = {first_column, first_row, last_column, last_row};
  const std::int64_t block_length = CheckBounds(bounds, pixel_type);
  MEMORY_MAPPING memory = MEMORY_MAPPING::OfZeros(static_cast<std::size_t>(block_length));
  if (memory.Start() == nullptr) {
    LogNoMemory();
    throw ERROR_NO_MEMORY();
  }
  Hold(std::move(memory), 0, bounds, pixel_type);
}

void MEM_MGR::HoldFile(FILE_DESCRIPTOR file, std::int64_t header_length, std::int64_t block_length,
                       int protection, const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type) {
  MEMORY_MAPPING memory = MEMORY_MAPPING::OfFile(
      file.Get(), static_cast<std::size_t>(header_length + block_length), protection);
  if (memory.Start() == nullptr) {
    const int error = errno;
    Log() << ALARM << "MEM_MGR: mmap: mmap failed..";
    LogSystemError(error);
    throw ERROR_CAN_NOT_MMAP();
  }
  file_ = std::move(file);
  Hold(std::move(memory), header_length, bounds, pixel_type);
}

void MEM_MGR::Hold(MEMORY_MAPPING memory, std::int64_t header_length, const IMAGE_BOUNDS& bounds,
                   PIXEL_TYPE pixel_type) {
  memory_ = std::move(memory);
  data_ = memory_.Start() + header_length;
  bounds_ = bounds;
  pixel_type_ = pixel_type;
  BuildRowTable(bounds.first_column, bounds.first_row);
}

void MEM_MGR::Unmap() {
  DeleteRowTable();
  color_map_ = {};
  own_color_planes_.reset();
  if (data_ != nullptr) {
    Log() << DEBUG
          << (file_.IsOpen() ? "MEM_MGR: unmap file .." : "MEM_MGR: delete image memory ..");
    if (!memory_.Unmap()) {
      Log() << ALARM << "MEM_MGR: munmap error ..";
    }
  }
  data_ = nullptr;
  file_.Close();
  bounds_ = {};
  pixel_type_ = PIXEL_TYPE::OTHERS;
}

void MEM_MGR::BuildRowTable(std::int64_t first_column, std::int64_t first_row) {
  if (data_ == nullptr) {
    ThrowNoImage();
  }
  const auto rebased = Rebased(bounds_, first_column, first_row);
  if (!rebased) {
    Log() << ALARM << "MEM_MGR: image can not be counted from column " << first_column << ", row "
          << first_row;
    throw ERROR_ARGUMENT();
  }
  DeleteRowTable();
  // Rows without columns are not tabulated: nothing can be addressed in them, and a header may
  // declare billions of them.
  const auto rows = static_cast<std::size_t>(Width() > 0 ? Height() : 0);
  rows_.reset(new (std::nothrow) void*[rows]);
  if (rows_ == nullptr) {
    LogNoMemory();
    throw ERROR_NO_MEMORY();
  }
  bounds_ = *rebased;
  // Without sign, so that a far origin wraps around as addresses do.
  const auto bytes_per_pixel = static_cast<std::uint64_t>(BytesPerPixel());
  const auto shift =
      static_cast<std::ptrdiff_t>(static_cast<std::uint64_t>(first_column) * bytes_per_pixel);
  const std::uint64_t row_length = static_cast<std::uint64_t>(Width()) * bytes_per_pixel;
  for (std::size_t k = 0; k < rows; ++k) {
    rows_[k] = ShiftOrigin(data_ + k * row_length, shift);
  }
}

void MEM_MGR::DeleteRowTable() {
  if (rows_ != nullptr) {
    Log() << DEBUG << "MEM_MGR: delete num. rec. interface ..";
    rows_.reset();
  }
}

void* const* MEM_MGR::RowTable(std::size_t pixel_size) const {
  if (rows_ == nullptr) {
    ThrowNoImage();
  }
  if (pixel_size != static_cast<std::size_t>(BytesPerPixel())) {
    Log() << ALARM << "MEM_MGR: pixels are " << BytesPerPixel() << " bytes long, not "
          << pixel_size;
    throw ERROR_NOT_SUPPORTED_PIXEL_TYPE();
  }
  return ShiftOrigin(rows_.get(), bounds_.first_row);
}

void MEM_MGR::Save(const char* path, mode_t mode) const {
  CheckCanSave(path);
  const RASTER_HEADER::BYTES header = MakeHeader(bounds_, pixel_type_, 0).Encode();
  const FILE_DESCRIPTOR file(path, create_flags, mode);
  if (!file.Write(header.data(), header.size())) {
    Log() << ALARM << "MEM_MGR: can not save header for " << path;
    throw ERROR_CAN_NOT_WRITE_FILE();
  }
  WritePixels(file, path, static_cast<std::size_t>(DataLength()));
}

void MEM_MGR::WriteRaw(const char* path, mode_t mode) const {
  CheckCanSave(path);
  WritePixels(FILE_DESCRIPTOR(path, create_flags, mode), path,
              static_cast<std::size_t>(Width() * Height()));
}

void MEM_MGR::CheckCanSave(const char* path) const {
  if (data_ == nullptr) {
    Log() << ALARM << "MEM_MGR: unknown data type";
    throw ERROR_ALGORITHM();
  }
  if (file_.IsFile(path)) {
    // Emptying the file would take the pixels away from under the mapping.
    Log() << ALARM << "MEM_MGR: can not save a mapped file into itself: " << path;
    throw ERROR_ARGUMENT();
  }
}

void MEM_MGR::WritePixels(const FILE_DESCRIPTOR& file, const char* path, std::size_t length) const {
  if (!file.IsOpen() || !file.Write(data_, length)) {
    Log() << ALARM << "MEM_MGR: unable to write into: " << path;
    throw ERROR_CAN_NOT_WRITE_FILE();
  }
}

void MEM_MGR::Sync(int flags) const {
  if (file_.IsOpen() && !memory_.Sync(flags)) {
    ThrowSyncError(errno);
  }
}

void MEM_MGR::StartWriteBack() const noexcept {
  if (file_.IsOpen()) {
    file_.StartSync();
  }
}

void MEM_MGR::Flush() const {
  if (file_.IsOpen() && !(memory_.Sync(MS_SYNC) && file_.Sync())) {
    const int error = errno;
    Log() << ALARM << "MEM_MGR: can not carry over to the disk: " << path_ << ": "
          << SystemErrorText(error);
    ThrowSyncError(error);
  }
}

void MEM_MGR::Advise(int pages_per_call) const {
  if (pages_per_call < 1) {
    Log() << ALARM << "MEM_MGR: less than one page per madvise call: " << pages_per_call;
    throw ERROR_ARGUMENT();
  }
  const double call_length = static_cast<double>(::getpagesize()) * pages_per_call;
  const auto calls = static_cast<std::int64_t>(static_cast<double>(memory_.Length()) / call_length);
  Log() << DEBUG << "MEM_MGR: making " << calls << " madvise calls";
  Log() << DEBUG << "MEM_MGR: madvise completed";
}

void MEM_MGR::SetColorTable(const COLOR_MAP& color_map) {
  std::unique_ptr<unsigned char[]> planes(
      new (std::nothrow) unsigned char[std::size_t{3} * color_map.entries]);
  if (planes == nullptr) {
    Log() << ALARM << "can not allocate colortable of length: 3 x " << color_map.entries
          << " [bytes]";
    throw ERROR_NO_MEMORY();
  }
  CopyPlanes(color_map, planes.get());
  color_map_ = COLOR_MAP::FromPlanes(planes.get(), color_map.entries);
  own_color_planes_ = std::move(planes);
}
