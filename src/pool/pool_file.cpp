#include "pool/pool_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "logging/logging.h"

POOL_FILE::POOL_FILE(const char* name, int flags)
    : name_(name), descriptor_(::open(name, flags | O_CLOEXEC)) {}

POOL_FILE::POOL_FILE(POOL_FILE&& other) noexcept {
  *this = std::move(other);
}

POOL_FILE& POOL_FILE::operator=(POOL_FILE&& other) noexcept {
  std::swap(name_, other.name_);
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

POOL_FILE::~POOL_FILE() {
  if (IsOpen()) {
    ::close(descriptor_);
  }
}

bool POOL_FILE::IsDirectory() const noexcept {
  struct stat status = {};
  return ::fstat(descriptor_, &status) == 0 && S_ISDIR(status.st_mode);
}

POOL_LOCK::POOL_LOCK(const POOL_FILE& file, KIND kind) : descriptor_(file.Descriptor()) {
  const int operation = kind == KIND::SHARED ? LOCK_SH : LOCK_EX;
  int result = 0;
  do {
    result = ::flock(descriptor_, operation);
  } while (result != 0 && errno == EINTR);
  if (result != 0) {
    Log() << LOGGING_LEVEL_T::WARNING << "can not lock parameter file " << file.Name() << ": "
          << std::strerror(errno);
  }
}

POOL_LOCK::~POOL_LOCK() {
  ::flock(descriptor_, LOCK_UN);
}
