#include "control/status_files.h"

#include <fcntl.h>
#include <unistd.h>

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
  return WriteNumberFile(error_file_.c_str(), 1);
}
