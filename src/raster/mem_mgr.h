#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "base/data_type.h"
#include "raster/color_map.h"
#include "raster/image_bounds.h"
#include "raster/memory_mapping.h"
#include "raster/pixel_type.h"
#include "raster/raster_output.h"
#include "system/file_descriptor.h"

/// One raster image in memory: a file mapped as a whole, so that pixels are read and written in
/// place, or zero-filled memory of the process. One manager can hold several images in turn.
///
/// Bounds include both ends: (first column, first row, last column, last row). A failure is logged
/// at ALARM and thrown as a bare class of the error hierarchy. An operation that was to hold an
/// image then leaves the manager empty, or, after ERROR_NO_MEMORY, without row table. Nothing is
/// locked: threads may use rows and pixels at once, on pixels of their own where they write, while
/// nobody calls an operation that changes what is held.
class MEM_MGR {
 public:
  MEM_MGR() = default;
  MEM_MGR(const MEM_MGR&) = delete;
  MEM_MGR& operator=(const MEM_MGR&) = delete;
  virtual ~MEM_MGR() { Unmap(); }

  /// Maps a raster file; its header tells the pixel type. `access_mode` is that of `open`: 0
  /// allows to read the pixels and 2 to read and write them. Systems grant no mapping for 1, write
  /// only. The bounds become 0 .. width - 1 and 0 .. height - 1.
  ///
  /// Throws ERROR_CAN_NOT_OPEN_FILE, ERROR_CAN_NOT_READ_FILE (no header, or fewer bytes than the
  /// header declares), ERROR_NOT_SUPPORTED_PIXEL_TYPE, ERROR_CAN_NOT_MMAP, ERROR_NO_MEMORY.
  void Map(const char* path, int access_mode);
  /// The same, taking the pixels to be of the given type whatever the header says.
  void Map(const char* path, int access_mode, PIXEL_TYPE pixel_type);

  /// Maps a file without header as an image of single bytes with the given bounds. Whether the
  /// file is that long is not checked: touching pixels behind its end is a bus error.
  ///
  /// Throws ERROR_CAN_NOT_OPEN_FILE, ERROR_CAN_NOT_MMAP (also for an image without pixels),
  /// ERROR_ARGUMENT for impossible bounds, ERROR_NO_MEMORY.
  void MapRaw(const char* path, std::int64_t first_column, std::int64_t first_row,
              std::int64_t last_column, std::int64_t last_row, int access_mode);

  /// Creates a raster file of zeros, replacing any file of that name, and maps it to read and
  /// write. It is locked until it is unmapped, so that no other program that does so writes it. The
  /// file is sparse: it takes disk space as pixels are written; a disk without room for all of them
  /// is a line at WARNING. The bounds become 0 .. width - 1 and 0 .. height - 1. `color_map` is
  /// copied into the file; its planes must not be this manager's, which lets go of them first.
  ///
  /// Throws ERROR_NOT_SUPPORTED_PIXEL_TYPE, ERROR_ARGUMENT (impossible bounds, or sides that a
  /// header can not hold), both before any file is touched; ERROR_CAN_NOT_CREATE_FILE,
  /// ERROR_CAN_NOT_WRITE_FILE, ERROR_CAN_NOT_MMAP, ERROR_NO_MEMORY.
  void Create(const char* path, std::int64_t first_column, std::int64_t first_row,
              std::int64_t last_column, std::int64_t last_row, PIXEL_TYPE pixel_type,
              const COLOR_MAP& color_map = {});
  void Create(const char* path, std::int64_t first_column, std::int64_t first_row,
              std::int64_t last_column, std::int64_t last_row,
              const BASIC::TYPES::DataType& data_type, const COLOR_MAP& color_map = {});

  /// The same in a file that is open already, so that it could be looked at before it is emptied,
  /// and locked.
  void Create(RASTER_OUTPUT file, std::int64_t first_column, std::int64_t first_row,
              std::int64_t last_column, std::int64_t last_row, PIXEL_TYPE pixel_type,
              const COLOR_MAP& color_map = {});
  /// Opens the file for that. Throws ERROR_CAN_NOT_CREATE_FILE.
  static RASTER_OUTPUT OpenOutput(const char* path);

  /// Throws what the first `Create` would, as far as that can be told without touching a file:
  /// ERROR_NOT_SUPPORTED_PIXEL_TYPE, ERROR_ARGUMENT and ERROR_CAN_NOT_CREATE_FILE. Disk space is
  /// not looked at.
  static void CheckCreate(const char* path, std::int64_t first_column, std::int64_t first_row,
                          std::int64_t last_column, std::int64_t last_row, PIXEL_TYPE pixel_type);

  /// Holds zero-filled memory as an image with the given bounds.
  ///
  /// Throws ERROR_NOT_SUPPORTED_PIXEL_TYPE, ERROR_ARGUMENT for impossible bounds, ERROR_NO_MEMORY.
  void CreateInMemory(std::int64_t first_column, std::int64_t first_row, std::int64_t last_column,
                      std::int64_t last_row, PIXEL_TYPE pixel_type);

  /// Writes the held image into a new raster file, without its colour map. `mode` are the
  /// permissions of the file. What is held does not change.
  ///
  /// Throws ERROR_ALGORITHM when nothing is held, ERROR_ARGUMENT when `path` is the mapped file
  /// itself or a header can not hold the sides, ERROR_CAN_NOT_WRITE_FILE.
  void Save(const char* path, mode_t mode) const;

  /// Writes width x height bytes of the held image into a new file without header: all of it when
  /// the pixels are single bytes, and of wider pixels only that much. Throws like `Save`.
  void WriteRaw(const char* path, mode_t mode) const;

  /// Carries changes over to the file, with the flags of `msync`; does nothing unless a file is
  /// mapped. Throws ERROR_CAN_NOT_MSYNC; the image stays held.
  void Sync(int flags) const;

  /// Logs how many calls would cover the mapping at that many pages a call. The system is told
  /// nothing, its own paging suits rasters. Throws ERROR_ARGUMENT for less than one page a call.
  void Advise(int pages_per_call) const;

  /// Lets the system begin to carry changes over to the disk of a mapped file; does not wait.
  void StartWriteBack() const noexcept;
  /// Waits until the mapped file, if any, is on its disk. Throws ERROR_CAN_NOT_MSYNC.
  void Flush() const;

  /// Takes over a copy of a colour map in place of the held one; the file does not change.
  /// Throws ERROR_NO_MEMORY.
  void SetColorTable(const COLOR_MAP& color_map);

  /// Releases everything. A mapped file is then complete as far as other processes see.
  void Unmap();

  /// Counts columns and rows from the given ones, and returns the row table of the image: entry
  /// [row][column] is a pixel. It is valid until the next call or the release. `PIXEL` is a type of
  /// the size of a pixel.
  ///
  /// Throws ERROR_ALGORITHM when nothing is held, ERROR_NOT_SUPPORTED_PIXEL_TYPE when `PIXEL` has
  /// another size, ERROR_ARGUMENT when the last indices would not fit into 64 bits,
  /// ERROR_NO_MEMORY.
  template <class PIXEL>
  PIXEL* const* GetNumRecMatrix(std::int64_t first_column, std::int64_t first_row) {
    BuildRowTable(first_column, first_row);
    return Rows<PIXEL>();
  }

  /// The row table as it is, counted from the first row and column of the bounds. Throws like
  /// `GetNumRecMatrix`.
  template <class PIXEL>
  PIXEL* const* Rows() const {
    // All pointers to objects look alike, so that the table need not know the type of the pixels.
    return reinterpret_cast<PIXEL* const*>(RowTable(sizeof(PIXEL)));
  }

  /// First byte of the pixel block, null when nothing is held.
  unsigned char* Data() const noexcept { return data_; }
  /// Length of the pixel block in bytes.
  std::int64_t DataLength() const noexcept { return Width() * Height() * BytesPerPixel(); }
  std::int64_t Width() const noexcept { return bounds_.Width(); }
  std::int64_t Height() const noexcept { return bounds_.Height(); }
  const IMAGE_BOUNDS& Bounds() const noexcept { return bounds_; }
  /// `OTHERS` when nothing is held.
  PIXEL_TYPE PixelType() const noexcept { return pixel_type_; }
  /// The pixel type as a data type. Throws ERROR_NO_MEMORY.
  BASIC::TYPES::DataType PixelDataType() const { return DataTypeOf(pixel_type_); }
  int BytesPerPixel() const noexcept { return ::BytesPerPixel(pixel_type_); }
  /// The colour map of the file, or the one that was set; without entries when there is none.
  const COLOR_MAP& ColorMap() const noexcept { return color_map_; }

 private:
  void MapRaster(const char* path, int access_mode, std::optional<PIXEL_TYPE> pixel_type);
  /// Lets go of what is held; throws for bounds and types that can not be, before a file is opened.
  void BeginCreation(const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type, const COLOR_MAP& color_map);
  void FillFile(RASTER_OUTPUT output, const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type,
                const COLOR_MAP& color_map);
  void HoldFile(FILE_DESCRIPTOR file, std::int64_t header_length, std::int64_t block_length,
                int protection, const IMAGE_BOUNDS& bounds, PIXEL_TYPE pixel_type);
  void Hold(MEMORY_MAPPING memory, std::int64_t header_length, const IMAGE_BOUNDS& bounds,
            PIXEL_TYPE pixel_type);
  void BuildRowTable(std::int64_t first_column, std::int64_t first_row);
  void DeleteRowTable();
  void* const* RowTable(std::size_t pixel_size) const;
  void CheckCanSave(const char* path) const;
  void WritePixels(const FILE_DESCRIPTOR& file, const char* path, std::size_t length) const;

  FILE_DESCRIPTOR file_;   ///< open while a file is mapped
  std::string path_;       ///< of that file
  MEMORY_MAPPING memory_;  ///< header, colour map and pixel block, or the pixel block alone
  unsigned char* data_ = nullptr;
  IMAGE_BOUNDS bounds_;
  PIXEL_TYPE pixel_type_ = PIXEL_TYPE::OTHERS;
  std::unique_ptr<void*[]> rows_;
  COLOR_MAP color_map_;
  std::unique_ptr<unsigned char[]> own_color_planes_;  ///< of a map that lies outside the file
};
