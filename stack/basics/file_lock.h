#pragma once

#include <filesystem>

#include "system/file_descriptor.h"

/// An exclusive lock on a file, which is created for it. Whoever dies lets it go.
class FILE_LOCK {
 public:
  enum class WAY { TRY, WAIT };

  /// Throws std::system_error when the file cannot be created.
  FILE_LOCK(const std::filesystem::path& file, WAY way);

  /// Always, when it was waited for; file systems without locks count as well.
  bool IsHeld() const noexcept { return is_held_; }
  /// A child that keeps it open holds the lock as well.
  int Descriptor() const noexcept { return file_.Get(); }

 private:
  FILE_DESCRIPTOR file_;
  bool is_held_ = false;
};

/// Whether somebody holds the lock. Takes it at no time, and creates nothing.
bool IsLocked(const std::filesystem::path& file);
