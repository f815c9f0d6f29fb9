#include "basics/file_lock.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace {

/// The lock of an open file, not of a process, on the whole of it.
struct flock WholeFile() {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return lock;
}

bool Lock(int descriptor, int operation) {
  struct flock lock = WholeFile();
  int result = -1;
  do {
    result = ::fcntl(descriptor, operation, &lock);
  } while (result != 0 && errno == EINTR);
  return result == 0 || (errno != EAGAIN && errno != EACCES);
}

}  // namespace

FILE_LOCK::FILE_LOCK(const std::filesystem::path& file, WAY way)
    : descriptor_(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
  if (descriptor_ < 0) {
    throw std::system_error(errno, std::generic_category(), "can not open " + file.string());
  }
  is_held_ = Lock(descriptor_, way == WAY::TRY ? F_OFD_SETLK : F_OFD_SETLKW);
}

FILE_LOCK::~FILE_LOCK() {
  ::close(descriptor_);
}

bool IsLocked(const std::filesystem::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) {
    return false;
  }
  struct flock lock = WholeFile();
  const bool is_known = ::fcntl(descriptor, F_OFD_GETLK, &lock) == 0;
  ::close(descriptor);
  return is_known && lock.l_type != F_UNLCK;
}
