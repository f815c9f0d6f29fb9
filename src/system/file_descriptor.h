#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>

/// Owns an open file, or none. Operations leave the system's reason for a failure in `errno`, and
/// may be called from signal handlers.
class FILE_DESCRIPTOR {
 public:
  FILE_DESCRIPTOR() = default;
  /// Opens a file; `IsOpen` tells whether that succeeded. `permissions` are those of a file that
  /// the flags create.
  FILE_DESCRIPTOR(const char* path, int flags, mode_t permissions = 0) noexcept;
  /// Takes over an open descriptor, or -1.
  explicit FILE_DESCRIPTOR(int descriptor) noexcept : descriptor_(descriptor) {}
  FILE_DESCRIPTOR(FILE_DESCRIPTOR&& other) noexcept;
  FILE_DESCRIPTOR& operator=(FILE_DESCRIPTOR&& other) noexcept;
  ~FILE_DESCRIPTOR() { Close(); }

  bool IsOpen() const noexcept { return descriptor_ >= 0; }
  int Get() const noexcept { return descriptor_; }
  /// False when the system reports a failure; the file is closed then, too.
  bool Close() noexcept;

  /// Length of the file in bytes.
  std::optional<std::int64_t> Length() const noexcept;
  /// Bytes that the file may still take on its disk; none where the file system does not tell.
  std::optional<std::int64_t> FreeSpace() const noexcept;
  /// Whether `path` names the open file, by whatever name.
  bool IsFile(const char* path) const noexcept;

  /// Whether the other descriptor is open for the same file.
  bool IsFileOf(int descriptor) const noexcept;

  /// Reads the first `size` bytes of the file; false when there are fewer.
  bool ReadStart(void* bytes, std::size_t size) const noexcept;
  /// Writes all bytes at the file's position; false when not all could be written.
  bool Write(const void* bytes, std::size_t size) const noexcept;
  /// Makes the file that long; what is new reads as zeros and takes no disk space.
  bool SetLength(std::int64_t length) const noexcept;
  /// Waits until the file is on its disk.
  bool Sync() const noexcept;
  /// Lets the system begin to carry changes over to the disk, and does not wait.
  void StartSync() const noexcept;

 private:
  int descriptor_ = -1;
};
