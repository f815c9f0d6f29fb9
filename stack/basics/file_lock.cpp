#include "basics/file_lock.h"

#include <fcntl.h>

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
    : file_(file.c_str(), O_RDWR | O_CREAT, 0666) {
  if (!file_.IsOpen()) {
    throw std::system_error(errno, std::generic_category(), "can not open " + file.string());
  }
  is_held_ = Lock(file_.Get(), way == WAY::TRY ? F_OFD_SETLK : F_OFD_SETLKW);
}

bool IsLocked(const std::filesystem::path& file) {
  const FILE_DESCRIPTOR opened(file.c_str(), O_RDONLY);
  struct flock lock = WholeFile();
  return opened.IsOpen() && ::fcntl(opened.Get(), F_OFD_GETLK, &lock) == 0 &&
         lock.l_type != F_UNLCK;
}
