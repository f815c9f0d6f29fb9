#include "system/whole_write.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace {

/// Whether a file that takes nothing at the moment does so in time.
bool AwaitRoom(int file) noexcept {
  constexpr int patience_ms = 5000;
  pollfd ready = {.fd = file, .events = POLLOUT, .revents = 0};
  int result = 0;
  do {
    result = ::poll(&ready, 1, patience_ms);
  } while (result < 0 && errno == EINTR);
  if (result == 0) {
    errno = ETIMEDOUT;
  }
  return result > 0;
}

}  // namespace

std::size_t WriteWhole(int file, std::string_view bytes) noexcept {
  const std::size_t size = bytes.size();
  while (!bytes.empty()) {
    errno = ENOSPC;  // should nothing be written without a reason
    // One call writes at most 2 GiB.
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (count < 0 && errno == EAGAIN) {
      if (!AwaitRoom(file)) {
        break;
      }
    } else if (count == 0 || errno != EINTR) {
      break;
    }
  }
  return size - bytes.size();
}
