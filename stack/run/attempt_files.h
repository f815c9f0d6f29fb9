#pragma once

#include <filesystem>
#include <string>

#include "description/stack_folder.h"
#include "system/file_descriptor.h"

/// Where one attempt of a slave's run leaves its log and what it prints: files that no other
/// attempt touches, with the time of its begin and its task in their names.
class ATTEMPT_FILES {
 public:
  /// `begun`: seconds since 1970; `task`: "JOB_INDEX" or empty.
  ATTEMPT_FILES(const SLAVE_FOLDER& folder, double begun, const std::string& task);

  const std::filesystem::path& Log() const noexcept { return log_; }
  const std::filesystem::path& Screen() const noexcept { return screen_; }
  /// Makes the slave's links lead here. Throws std::filesystem::filesystem_error.
  void Lead(const SLAVE_FOLDER& folder) const;

 private:
  std::filesystem::path log_;
  std::filesystem::path screen_;
};

/// Removes the logs and screens of all attempts to which no link leads. Returns how many went.
int RemoveOldAttemptFiles(const SLAVE_FOLDER& folder);

/// The file that takes what an attempt prints.
class SCREEN {
 public:
  /// Throws std::system_error when it cannot be created.
  explicit SCREEN(const std::filesystem::path& file);
  int Descriptor() const noexcept { return file_.Get(); }

 private:
  FILE_DESCRIPTOR file_;
};
