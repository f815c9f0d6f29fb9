#pragma once

#include <cstddef>

/// Owns a range of mapped memory, or none. Operations leave the system's reason for a failure in
/// `errno`.
class MEMORY_MAPPING {
 public:
  MEMORY_MAPPING() = default;
  MEMORY_MAPPING(MEMORY_MAPPING&& other) noexcept;
  MEMORY_MAPPING& operator=(MEMORY_MAPPING&& other) noexcept;
  ~MEMORY_MAPPING() { Unmap(); }

  /// The first `length` bytes of a file, shared with it. Holds nothing on failure.
  static MEMORY_MAPPING OfFile(int descriptor, std::size_t length, int protection) noexcept;
  /// Zero-filled memory that takes pages only where it is touched. Holds nothing on failure.
  /// A length of 0 counts as 1.
  static MEMORY_MAPPING OfZeros(std::size_t length) noexcept;

  /// First byte, null when nothing is held.
  unsigned char* Start() const noexcept { return start_; }
  std::size_t Length() const noexcept { return length_; }

  /// Carries changes over to the file with the flags of `msync`.
  bool Sync(int flags) const noexcept;
  bool Unmap() noexcept;

 private:
  MEMORY_MAPPING(void* start, std::size_t length) noexcept;

  unsigned char* start_ = nullptr;
  std::size_t length_ = 0;
};
