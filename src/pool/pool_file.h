#pragma once

#include <string>

/// An open pool file: its name and its descriptor, which is closed at the end.
class POOL_FILE {
 public:
  /// No file, under the name "xxx.dat".
  POOL_FILE() = default;
  /// Opens with the flags of open(2); `IsOpen` tells whether it worked and errno why not.
  POOL_FILE(const char* name, int flags);
  POOL_FILE(POOL_FILE&& other) noexcept;
  POOL_FILE& operator=(POOL_FILE&& other) noexcept;
  POOL_FILE(const POOL_FILE&) = delete;
  POOL_FILE& operator=(const POOL_FILE&) = delete;
  ~POOL_FILE();

  bool IsOpen() const noexcept { return descriptor_ >= 0; }
  bool IsDirectory() const noexcept;
  const char* Name() const noexcept { return name_.c_str(); }
  int Descriptor() const noexcept { return descriptor_; }

 private:
  std::string name_ = "xxx.dat";
  int descriptor_ = -1;
};

/// An advisory lock on a pool file: shared by readers, exclusive for an update, so that nobody
/// reads a half-written pool. A file system without locks is no obstacle (WARNING).
class POOL_LOCK {
 public:
  enum class KIND { SHARED, EXCLUSIVE };

  /// Waits for the lock.
  POOL_LOCK(const POOL_FILE& file, KIND kind);
  ~POOL_LOCK();
  POOL_LOCK(const POOL_LOCK&) = delete;
  POOL_LOCK& operator=(const POOL_LOCK&) = delete;

 private:
  int descriptor_;
};
