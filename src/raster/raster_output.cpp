#include "raster/raster_output.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/error_exception.h"
#include "logging/logging.h"
#include "system/c_locale.h"
#include "system/take_lock.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr mode_t permissions = 0666;

/// False with `errno`, EWOULDBLOCK when somebody else has the lock.
bool TryLock(int descriptor) noexcept {
  return TakeLock(descriptor, LOCK_EX | LOCK_NB);
}

/// Whether the program that started this one has locked the file for it and handed the lock on with
/// an open descriptor, on which locking succeeds again.
bool IsLockedByInheritance(const FILE_DESCRIPTOR& file) noexcept {
  constexpr int most_descriptors = 1024;
  for (int other = STDERR_FILENO + 1; other < most_descriptors; ++other) {
    if (other != file.Get() && file.IsFileOf(other) && TryLock(other)) {
      return true;
    }
  }
  return false;
}

}  // namespace

RASTER_OUTPUT::RASTER_OUTPUT(std::string path)
    : path_(std::move(path)),
      file_(path_.c_str(), O_RDWR | O_CREAT | O_EXCL, permissions),
      is_new_(file_.IsOpen()) {
  if (!is_new_ && errno == EEXIST) {
    // What exists may also be a link to a file that does not.
    file_ = FILE_DESCRIPTOR(path_.c_str(), O_RDWR | O_CREAT, permissions);
  }
}

RASTER_OUTPUT::RASTER_OUTPUT(RASTER_OUTPUT&& other) noexcept
    : path_(std::move(other.path_)),
      file_(std::move(other.file_)),
      is_new_(std::exchange(other.is_new_, false)) {}

RASTER_OUTPUT::~RASTER_OUTPUT() {
  if (is_new_) {
    ::unlink(path_.c_str());
  }
}

void RASTER_OUTPUT::Lock() const {
  if (TryLock(file_.Get())) {
    return;
  }
  const int error = errno;
  if (error != EWOULDBLOCK) {
    Log() << WARNING << "MEM_MGR: can not lock: " << path_ << ": " << SystemErrorText(error);
  } else if (!IsLockedByInheritance(file_)) {
    Log() << ALARM << "MEM_MGR: another run is writing this output: " << path_;
    throw ERROR_CAN_NOT_CREATE_FILE();
  }
}

bool RASTER_OUTPUT::TakeEmpty(FILE_DESCRIPTOR& file) {
  // Opening for a new file would empty no device either.
  struct stat status {};
  if (::fstat(file_.Get(), &status) != 0 || (S_ISREG(status.st_mode) && !file_.SetLength(0))) {
    return false;
  }
  is_new_ = false;
  file = std::move(file_);
  return true;
}
