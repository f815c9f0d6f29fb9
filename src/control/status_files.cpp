#include "control/status_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "control/number_file.h"

STATUS_FILES::STATUS_FILES(const std::string& directory, const std::string& run_name)
    : stop_file_(directory + "STOP." + run_name),
      error_file_(directory + "ERROR." + run_name),
      ok_file_(directory + "OK." + run_name) {}

bool STATUS_FILES::StopFileExists() const noexcept {
  // Without O_NONBLOCK a FIFO of this name would hang the start.
  const int file = ::open(stop_file_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) {
    return false;
  }
  ::close(file);
  return true;
}

bool STATUS_FILES::MarkFailed() const noexcept {
  ::unlink(ok_file_.c_str());
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
