#include "system/take_lock.h"

#include <sys/file.h>

#include <cerrno>

bool TakeLock(int descriptor, int operation) noexcept {
  int result = 0;
  do {
    result = ::flock(descriptor, operation);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}
