#pragma once

#include <string>

#include "system/file_descriptor.h"

/// The file of a raster to come: opened, or created empty, and otherwise as it was until a raster
/// takes it. A new one that nobody takes is removed again.
class OUTPUT_FILE {
 public:
  /// `IsOpen` tells whether that succeeded, `errno` why not.
  explicit OUTPUT_FILE(std::string path);
  OUTPUT_FILE(OUTPUT_FILE&& other) noexcept;
  OUTPUT_FILE& operator=(OUTPUT_FILE&&) = delete;
  ~OUTPUT_FILE();

  const std::string& Path() const noexcept { return path_; }
  bool IsOpen() const noexcept { return file_.IsOpen(); }
  /// Whether it is the file behind this descriptor.
  bool IsFileOf(int descriptor) const noexcept { return file_.IsFileOf(descriptor); }
  bool IsSameAs(const OUTPUT_FILE& other) const noexcept { return IsFileOf(other.file_.Get()); }

  /// Keeps other programs that lock their outputs from writing the file as long as it is open; asks
  /// once and does not wait. A file system without locks is a line at WARNING. Throws
  /// ERROR_CAN_NOT_CREATE_FILE, after an ALARM line, when another one writes it.
  void Lock() const;

  /// Empties the file and hands it on; false and `errno` when it can not be emptied.
  bool TakeEmpty(FILE_DESCRIPTOR& file);

 private:
  std::string path_;
  FILE_DESCRIPTOR file_;
  bool is_new_ = false;
};
