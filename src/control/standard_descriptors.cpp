#include "control/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

bool OpenStandardDescriptors() noexcept {
  // The system gives the lowest free number.
  int file = STDIN_FILENO;
  while (file >= STDIN_FILENO && file <= STDERR_FILENO) {
    file = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  }
  if (file < 0) {
    return false;
  }
  ::close(file);
  return true;
}
