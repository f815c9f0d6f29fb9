#include "raster/output_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "base/error_exception.h"
#include "logging/logging.h"
#include "system/c_locale.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr mode_t permissions = 0666;

}  // namespace

OUTPUT_FILE::OUTPUT_FILE(std::string path)
    : path_(std::move(path)),
      file_(path_.c_str(), O_RDWR | O_CREAT | O_EXCL, permissions),
      is_new_(file_.IsOpen()) {
  if (!is_new_ && errno == EEXIST) {
    // What exists may also be a link to a file that does not.
    file_ = FILE_DESCRIPTOR(path_.c_str(), O_RDWR | O_CREAT, permissions);
  }
}

OUTPUT_FILE::OUTPUT_FILE(OUTPUT_FILE&& other) noexcept
    : path_(std::move(other.path_)),
      file_(std::move(other.file_)),
      is_new_(std::exchange(other.is_new_, false)) {}

OUTPUT_FILE::~OUTPUT_FILE() {
  if (is_new_) {
    ::unlink(path_.c_str());
  }
}

void OUTPUT_FILE::Lock() const {
  int result = 0;
  do {
    result = ::flock(file_.Get(), LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  if (result == 0) {
    return;
  }
  const int error = errno;
  if (error == EWOULDBLOCK) {
    Log() << ALARM << "MEM_MGR: another run is writing this output: " << path_;
    throw ERROR_CAN_NOT_CREATE_FILE();
  }
  Log() << WARNING << "MEM_MGR: can not lock: " << path_ << ": " << SystemErrorText(error);
}

bool OUTPUT_FILE::TakeEmpty(FILE_DESCRIPTOR& file) {
  // Opening for a new file would empty no device either.
  struct stat status {};
  if (::fstat(file_.Get(), &status) != 0 || (S_ISREG(status.st_mode) && !file_.SetLength(0))) {
    return false;
  }
  is_new_ = false;
  file = std::move(file_);
  return true;
}
