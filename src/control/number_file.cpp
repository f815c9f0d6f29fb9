#include "control/number_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <limits>

#include "system/file_descriptor.h"

namespace {

/// Opens the file, or creates it. Without O_NONBLOCK a FIFO of this name would hang the run.
FILE_DESCRIPTOR OpenOwnFile(const char* path) noexcept {
  constexpr mode_t permissions = 0666;
  FILE_DESCRIPTOR file(path, O_WRONLY | O_CREAT | O_NOFOLLOW, permissions);
  const bool is_symbolic_link = !file.IsOpen() && errno == ELOOP;
  struct stat status {};
  const bool is_hard_link =
      file.IsOpen() && ::fstat(file.Get(), &status) == 0 && status.st_nlink > 1;
  if (is_symbolic_link || is_hard_link) {
    ::unlink(path);
    file = FILE_DESCRIPTOR(path, O_WRONLY | O_CREAT | O_EXCL, permissions);
  }
  return file;
}

}  // namespace

bool WriteNumberFile(const char* path, int number) noexcept {
  std::array<char, std::numeric_limits<int>::digits10 + 3> text{};
  const char* const end = std::to_chars(text.begin(), text.end(), number).ptr;
  const auto length = static_cast<std::size_t>(end - text.data());
  FILE_DESCRIPTOR file = OpenOwnFile(path);
  return file.IsOpen() && file.Write(text.data(), length) &&
         file.SetLength(static_cast<std::int64_t>(length)) && file.Close();
}
