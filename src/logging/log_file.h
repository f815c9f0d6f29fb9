#pragma once

#include <atomic>
#include <string>
#include <string_view>
#include <vector>

#include "system/file_descriptor.h"

/// The file of the log: a temporary one, made with the first line, until `Open` names the real one
/// and carries the lines so far over. Operations return what went wrong, in lines to be shown at
/// ALARM. A file that can not be written is given up; the log goes on with what is left to it.
///
/// It is used under the log's lock, but for the operations of the fatal-signal handler.
class LOG_FILE {
 public:
  using TROUBLE = std::vector<std::string>;

  /// `name` is only kept (empty: none given yet).
  explicit LOG_FILE(std::string_view name = {}) : name_(name) {}
  LOG_FILE(const LOG_FILE&) = delete;
  LOG_FILE& operator=(const LOG_FILE&) = delete;

  /// Name of the real file; of the temporary one when it is kept in its place.
  const std::string& Name() const noexcept { return name_; }

  /// Opens and empties the real file and moves the temporary one into it. A FIFO that nobody reads
  /// can not be opened. When the lines can not be copied, the temporary file stays; when this is
  /// the real file's fault, it is the log from then on.
  TROUBLE Open(const std::string& name);
  /// Adds whole lines. The file is given up when that fails, and nothing is left in it of a line
  /// that did not fit. So is a FIFO whose reader has gone, or takes nothing for 5 seconds.
  TROUBLE Write(std::string_view lines);
  /// Ends the log: closes its file and removes the temporary one.
  TROUBLE Close();

  /// For the fatal-signal handler: the descriptor of the open file, -1 without one; and the removal
  /// of the temporary file, if there is one.
  int Descriptor() const noexcept { return descriptor_; }
  void RemoveTemporaryFile() const noexcept;

 private:
  void OpenTemporary();
  TROUBLE RemoveTemporary();
  /// Forgets the temporary file and returns its name.
  std::string LeaveTemporary() noexcept;
  void Hold(FILE_DESCRIPTOR file) noexcept;

  std::string name_;
  FILE_DESCRIPTOR file_;
  std::atomic<int> descriptor_ = -1;  ///< of `file_`
  bool has_begun_ = false;            ///< a file has been opened, or none can be
  std::string temporary_name_;        ///< empty without a temporary file
  std::atomic<const char*> published_temporary_name_ = nullptr;
};
