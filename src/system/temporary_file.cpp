#include "system/temporary_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cstdlib>
#include <memory>

#include "system/file_descriptor.h"
#include "system/take_lock.h"

namespace {

constexpr std::string_view suffix = "XXXXXX";
constexpr mode_t owner_only = S_IRUSR | S_IWUSR;
/// The sticky bit does nothing to a file and no file of a user has it. Here it tells that the file
/// is or was locked by who created it, so that a mere name like pool_master is not taken for one.
constexpr mode_t mark = S_ISVTX | owner_only;

bool IsMarked(int descriptor) noexcept {
  struct stat status = {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink > 0 &&
         (status.st_mode & static_cast<mode_t>(~S_IFMT)) == mark;
}

struct DIRECTORY_CLOSING {
  void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};

/// Links, pipes and devices of such names are not even opened.
bool CanBeTemporary(const dirent& entry, std::string_view prefix) noexcept {
  const std::string_view name = entry.d_name;
  return name.starts_with(prefix) && name.size() == prefix.size() + suffix.size() &&
         (entry.d_type == DT_REG || entry.d_type == DT_UNKNOWN);
}

}  // namespace

int CreateTemporaryFile(char* name, int flags) noexcept {
  const int descriptor = ::mkostemp(name, flags | O_CLOEXEC);
  if (descriptor >= 0 && TakeLock(descriptor, LOCK_EX | LOCK_NB)) {
    ::fchmod(descriptor, mark);
  }
  return descriptor;
}

void KeepTemporaryFile(int descriptor) noexcept {
  ::fchmod(descriptor, owner_only);
}

bool IsLeftOver(int descriptor) noexcept {
  // First the mark, so that the lock of a file in the making is never tried; then the links once
  // more, as its process removes the file before it gives the lock back.
  if (!IsMarked(descriptor) || !TakeLock(descriptor, LOCK_SH | LOCK_NB)) {
    return false;
  }
  const bool is_left_over = IsMarked(descriptor);
  ::flock(descriptor, LOCK_UN);
  return is_left_over;
}

void ForEachLeftOver(
    const std::string& directory, std::string_view prefix,
    const std::function<void(const std::string& path, int descriptor)>& body) noexcept {
  try {
    // The iterator of std::filesystem ends the program where memory for a name fails.
    const std::unique_ptr<DIR, DIRECTORY_CLOSING> opened(::opendir(directory.c_str()));
    const dirent* entry = nullptr;
    while (opened != nullptr && (entry = ::readdir(opened.get())) != nullptr) {
      if (CanBeTemporary(*entry, prefix)) {
        const std::string path = directory + (directory.ends_with('/') ? "" : "/") + entry->d_name;
        const FILE_DESCRIPTOR file(path.c_str(), O_RDONLY | O_NOFOLLOW);
        if (file.IsOpen() && IsLeftOver(file.Get())) {
          body(path, file.Get());
        }
      }
    }
  } catch (...) {  // no memory for a path or what the body makes of it
  }
}
