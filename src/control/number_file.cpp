#include "control/number_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <limits>

bool WriteNumberFile(const char* path, int number) noexcept {
  std::array<char, std::numeric_limits<int>::digits10 + 3> text{};
  const char* const end = std::to_chars(text.begin(), text.end(), number).ptr;
  const auto length = end - text.data();

  // Without O_NONBLOCK a FIFO of this name would hang the run.
  const int file = ::open(path, O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666);
  if (file < 0) {
    return false;
  }
  const bool written = ::write(file, text.data(), static_cast<std::size_t>(length)) == length &&
                       ::ftruncate(file, length) == 0;
  return ::close(file) == 0 && written;
}
