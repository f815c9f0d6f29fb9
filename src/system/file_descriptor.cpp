#include "system/file_descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "system/whole_write.h"

namespace {

bool IsSame(const struct stat& a, const struct stat& b) noexcept {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace

FILE_DESCRIPTOR::FILE_DESCRIPTOR(const char* path, int flags, mode_t permissions) noexcept
    // Without O_NONBLOCK a FIFO in place of the file would hang the program; files on disk do not
    // mind it.
    : descriptor_(::open(path, flags | O_CLOEXEC | O_NONBLOCK, permissions)) {}

FILE_DESCRIPTOR::FILE_DESCRIPTOR(FILE_DESCRIPTOR&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

FILE_DESCRIPTOR& FILE_DESCRIPTOR::operator=(FILE_DESCRIPTOR&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

bool FILE_DESCRIPTOR::Close() noexcept {
  return !IsOpen() || ::close(std::exchange(descriptor_, -1)) == 0;
}

std::optional<std::int64_t> FILE_DESCRIPTOR::Length() const noexcept {
  struct stat status {};
  if (::fstat(descriptor_, &status) != 0) {
    return std::nullopt;
  }
  return status.st_size;
}

std::optional<std::int64_t> FILE_DESCRIPTOR::FreeSpace() const noexcept {
  struct statvfs disk {};
  if (::fstatvfs(descriptor_, &disk) != 0 || disk.f_blocks == 0) {
    return std::nullopt;
  }
  const double bytes = static_cast<double>(disk.f_bavail) * static_cast<double>(disk.f_frsize);
  constexpr double most = 9e18;
  return static_cast<std::int64_t>(std::min(bytes, most));
}

bool FILE_DESCRIPTOR::IsFile(const char* path) const noexcept {
  struct stat own {};
  struct stat other {};
  return ::fstat(descriptor_, &own) == 0 && ::stat(path, &other) == 0 && IsSame(own, other);
}

bool FILE_DESCRIPTOR::IsFileOf(int descriptor) const noexcept {
  struct stat own {};
  struct stat other {};
  return ::fstat(descriptor_, &own) == 0 && ::fstat(descriptor, &other) == 0 && IsSame(own, other);
}

bool FILE_DESCRIPTOR::ReadStart(void* bytes, std::size_t size) const noexcept {
  auto* position = static_cast<char*>(bytes);
  std::size_t done = 0;
  while (done < size) {
    const ssize_t count =
        ::pread(descriptor_, position + done, size - done, static_cast<off_t>(done));
    if (count == 0 || (count < 0 && errno != EINTR)) {
      return false;
    }
    done += count > 0 ? static_cast<std::size_t>(count) : 0;
  }
  return true;
}

bool FILE_DESCRIPTOR::Write(const void* bytes, std::size_t size) const noexcept {
  return WriteWhole(descriptor_, {static_cast<const char*>(bytes), size}) == size;
}

bool FILE_DESCRIPTOR::SetLength(std::int64_t length) const noexcept {
  return ::ftruncate(descriptor_, length) == 0;
}

bool FILE_DESCRIPTOR::Sync() const noexcept {
  return ::fsync(descriptor_) == 0;
}

void FILE_DESCRIPTOR::StartSync() const noexcept {
  // A failure is told by `Sync` again, which has the last word.
  ::sync_file_range(descriptor_, 0, 0, SYNC_FILE_RANGE_WRITE);
}
