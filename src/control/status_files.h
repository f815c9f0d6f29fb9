#pragma once

#include <atomic>
#include <string>

/// The marker files of one run in its status directory: "STOP.", "ERROR." and "OK." followed by
/// the name of the run. The fatal-signal handler can use it at any moment.
class STATUS_FILES {
 public:
  /// `directory` ends with "/", or is empty for the current directory.
  STATUS_FILES(const std::string& directory, const std::string& run_name);

  const std::string& StopFile() const noexcept { return stop_file_; }
  const std::string& ErrorFile() const noexcept { return error_file_; }
  const std::string& OkFile() const noexcept { return ok_file_; }

  /// Whether the STOP file can be opened for reading; its content does not matter.
  bool StopFileExists() const noexcept;
  /// Each removes its file; false, with `errno`, when one stays.
  bool RemoveOkFile() const noexcept;
  bool RemoveErrorFile() const noexcept;
  /// Removes the OK file and writes 1 into the ERROR file, if need be with the descriptor of
  /// standard input; false when that cannot be written. Async-signal-safe.
  bool MarkFailed() const noexcept;

  /// From here on the OK file or the ERROR file is left alone: another's file has its name.
  void SpareOkFile() noexcept { spares_ok_file_ = true; }
  void SpareErrorFile() noexcept { spares_error_file_ = true; }

 private:
  std::string stop_file_;
  std::string error_file_;
  std::string ok_file_;
  std::atomic<bool> spares_ok_file_ = false;
  std::atomic<bool> spares_error_file_ = false;
};
