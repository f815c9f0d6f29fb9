#include "control/status_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "control/number_file.h"
#include "system/file_descriptor.h"

namespace {

/// Whether nothing of this name is left; `errno` tells why the file stays.
bool Remove(const char* path) noexcept {
  if (::unlink(path) == 0) {
    return true;
  }
  const int error = errno;
  struct stat status {};
  const bool is_there = ::lstat(path, &status) == 0;
  errno = error;
  return !is_there;
}

}  // namespace

STATUS_FILES::STATUS_FILES(const std::string& directory, const std::string& run_name)
    : stop_file_(directory + "STOP." + run_name),
      error_file_(directory + "ERROR." + run_name),
      ok_file_(directory + "OK." + run_name) {}

bool STATUS_FILES::StopFileExists() const noexcept {
  return FILE_DESCRIPTOR(stop_file_.c_str(), O_RDONLY).IsOpen();
}

bool STATUS_FILES::RemoveOkFile() const noexcept {
  return Remove(ok_file_.c_str());
}

bool STATUS_FILES::RemoveErrorFile() const noexcept {
  return Remove(error_file_.c_str());
}

bool STATUS_FILES::MarkFailed() const noexcept {
  if (!spares_ok_file_) {
    RemoveOkFile();
  }
  if (spares_error_file_) {
    return false;
  }
  if (WriteNumberFile(error_file_.c_str(), 1)) {
    return true;
  }
  if (errno != EMFILE) {
    return false;
  }
  // A run that ends so has no more use for its standard input, whose descriptor serves now.
  ::close(STDIN_FILENO);
  return WriteNumberFile(error_file_.c_str(), 1);
}
