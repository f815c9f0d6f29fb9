#include "raster/creation_error.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "base/same_file.h"
#include "system/file_descriptor.h"

namespace {

int ErrorOfNewFile(const std::filesystem::path& path) {
  if (path.filename().empty()) {
    return path.empty() ? ENOENT : EISDIR;
  }
  const std::filesystem::path directory = path.has_parent_path() ? path.parent_path() : ".";
  return ::faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
}

}  // namespace

int CreationError(const char* path) {
  // Without O_NONBLOCK a FIFO would be waited for.
  const FILE_DESCRIPTOR file(path, O_RDWR | O_NONBLOCK);
  if (!file.IsOpen()) {
    const int error = errno;
    return error == ENOENT ? ErrorOfNewFile(BehindLinks(path)) : error;
  }
  struct stat status {};
  return ::fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode) ? 0 : EINVAL;
}
