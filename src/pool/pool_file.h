#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "system/file_descriptor.h"

/// An open pool file and its name. For trouble that only the caller can word the operations return
/// false.
class POOL_FILE {
 public:
  /// No file, under the name "xxx.dat".
  POOL_FILE() = default;
  /// Opens with the flags of open(2); `IsOpen` tells whether it worked and errno why not.
  POOL_FILE(const char* name, int flags);
  POOL_FILE(POOL_FILE&& other) noexcept;
  POOL_FILE& operator=(POOL_FILE&& other) noexcept;
  ~POOL_FILE();

  /// Creates a file of a unique name, "<directory>/pool_XXXXXX", open for writing. It is removed at
  /// the end unless `Keep` was called: a failure must not leave files that nobody names. After a
  /// kill `ForEachLeftOver` finds it.
  static POOL_FILE CreateTemporary(const std::string& directory);
  static constexpr std::string_view temporary_prefix = "pool_";
  void Keep() noexcept { is_removed_at_end_ = false; }

  bool IsOpen() const noexcept { return file_.IsOpen(); }
  bool IsDirectory() const noexcept;
  bool IsRegular() const noexcept;
  /// Whether a POOL_LOCK holds this file now.
  bool IsLocked() const noexcept { return is_locked_; }
  /// Whether the name still leads to this file.
  bool IsAtItsName() const noexcept { return file_.IsFile(Name()); }
  const char* Name() const noexcept { return name_.c_str(); }
  int Descriptor() const noexcept { return file_.Get(); }

  /// Each tells whether it worked; errno says why not.
  bool Truncate(std::size_t length) noexcept {
    return file_.SetLength(static_cast<std::int64_t>(length));
  }
  bool Write(std::string_view text) noexcept;    ///< from the start of the file on
  bool Sync() noexcept { return file_.Sync(); }  ///< to the disk
  /// Reports what disks of a network tell only at a close, and leaves the file open and locked.
  bool FinishWriting() noexcept;
  bool Remove() noexcept;

 private:
  friend class POOL_LOCK;

  std::string name_ = "xxx.dat";
  FILE_DESCRIPTOR file_;
  bool is_removed_at_end_ = false;
  mutable bool is_locked_ = false;
};

/// An advisory lock on a pool file: shared by readers, exclusive for an update, so that nobody
/// reads a half-written pool. A file system without locks is no obstacle; the exclusive lock then
/// is a line at WARNING.
class POOL_LOCK {
 public:
  enum class KIND { SHARED, EXCLUSIVE };

  /// Waits for the lock, with a line at WARNING where it is not free. The file must stay where it
  /// is until the lock is given back. While it has a lock already a further one changes nothing, so
  /// that an update can read its own pool.
  POOL_LOCK(const POOL_FILE& file, KIND kind);
  POOL_LOCK(POOL_LOCK&& other) noexcept : file_(std::exchange(other.file_, nullptr)) {}
  ~POOL_LOCK();
  POOL_LOCK(const POOL_LOCK&) = delete;
  POOL_LOCK& operator=(const POOL_LOCK&) = delete;

 private:
  const POOL_FILE* file_;  ///< null for a lock that is another one's to give back
};
