#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "basics/file_lock.h"

/// What tells an output from any other file that may stand under its name later.
struct OUTPUT_FILE {
  std::int64_t size = 0;    ///< [bytes]
  std::int64_t time = 0;    ///< of modification [ns since 1970]
  std::uint64_t inode = 0;  ///< number of the file in its file system

  bool operator==(const OUTPUT_FILE&) const = default;
};

enum class OUTPUTS_PLACE {
  FINAL,    ///< all under their final names
  PARTIAL,  ///< some of them not yet
  GONE      ///< one is under neither name, or is another file
};

/// Where these outputs are. A stack that was moved may have them in other inodes.
OUTPUTS_PLACE FindOutputs(const std::vector<std::filesystem::path>& outputs,
                          const std::vector<OUTPUT_FILE>& files, bool has_moved);

/// What is there under the final names; zeros for one that is not.
std::vector<OUTPUT_FILE> StatesOfOutputs(const std::vector<std::filesystem::path>& outputs);

/// Gives those of these outputs that have partial names their final ones. Throws
/// std::filesystem::filesystem_error.
void PublishOutputs(const std::vector<std::filesystem::path>& outputs,
                    const std::vector<OUTPUT_FILE>& files, bool has_moved);

/// Removes the partial outputs that no run is at work on. What cannot be removed stays. Returns how
/// many went.
int RemovePartialOutputs(const std::vector<std::filesystem::path>& outputs);

/// A partial output of one run: created empty and locked, so that no other run of this or another
/// stack writes it, and removed in the end unless it has been kept.
class PARTIAL_FILE {
 public:
  /// Throws STACK_ERROR when another run is at work on it, std::system_error when it cannot be
  /// created.
  explicit PARTIAL_FILE(const std::filesystem::path& output);
  ~PARTIAL_FILE();
  PARTIAL_FILE(const PARTIAL_FILE&) = delete;
  PARTIAL_FILE& operator=(const PARTIAL_FILE&) = delete;

  const std::filesystem::path& Path() const noexcept { return path_; }
  /// What the run has to keep open, so that the lock lives as long as it.
  int Descriptor() const noexcept { return lock_->Descriptor(); }
  /// The error with which the disk refuses the rest of a sparse file, as ENOSPC; 0 when there is
  /// room.
  int DiskError() const noexcept;
  /// Brings the file to the disk and says what it is; it stays from now on. Throws
  /// std::system_error, and STACK_ERROR when somebody has put another one in its place.
  OUTPUT_FILE Keep();

 private:
  std::filesystem::path path_;
  std::unique_ptr<FILE_LOCK> lock_;
  bool is_kept_ = false;
};
