#pragma once

#include <string>

/// The marker files of one run in its status directory: "STOP.", "ERROR." and "OK." followed by
/// the name of the run. Immutable once made, so that the fatal-signal handler can use it at any
/// moment.
class STATUS_FILES {
 public:
  /// `directory` ends with "/", or is empty for the current directory.
  STATUS_FILES(const std::string& directory, const std::string& run_name);

  const std::string& StopFile() const noexcept { return stop_file_; }
  const std::string& ErrorFile() const noexcept { return error_file_; }
  const std::string& OkFile() const noexcept { return ok_file_; }

  /// Whether the STOP file can be opened for reading; its content does not matter.
  bool StopFileExists() const noexcept;
  /// Removes the OK file and writes 1 into the ERROR file, if need be with the descriptor of
  /// standard input; false when that cannot be written. Async-signal-safe.
  bool MarkFailed() const noexcept;

 private:
  std::string stop_file_;
  std::string error_file_;
  std::string ok_file_;
};
