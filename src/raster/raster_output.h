#pragma once

#include <string>

#include "system/file_descriptor.h"

/// The file of a raster to come: opened, or created empty, and otherwise as it was until a raster
/// takes it. A new one that nobody takes is removed again.
class RASTER_OUTPUT {
 public:
  /// `IsOpen` tells whether that succeeded, `errno` why not.
  explicit RASTER_OUTPUT(std::string path);
  RASTER_OUTPUT(RASTER_OUTPUT&& other) noexcept;
  RASTER_OUTPUT& operator=(RASTER_OUTPUT&&) = delete;
  ~RASTER_OUTPUT();

  const std::string& Path() const noexcept { return path_; }
  bool IsOpen() const noexcept { return file_.IsOpen(); }
  /// Whether it is the file behind this descriptor.
  bool IsFileOf(int descriptor) const noexcept { return file_.IsFileOf(descriptor); }
  bool IsSameAs(const RASTER_OUTPUT& other) const noexcept { return IsFileOf(other.file_.Get()); }

  /// Keeps other programs that lock their outputs from writing the file as long as it is open; asks
  /// once and does not wait. A lock that the starting program hands on is its own. A file system
  /// without locks is a line at WARNING. Throws ERROR_CAN_NOT_CREATE_FILE, after an ALARM line,
  /// when another one writes it.
  void Lock() const;

  /// Empties the file and hands it on; false and `errno` when it can not be emptied.
  bool TakeEmpty(FILE_DESCRIPTOR& file);

 private:
  std::string path_;
  FILE_DESCRIPTOR file_;
  bool is_new_ = false;
};
