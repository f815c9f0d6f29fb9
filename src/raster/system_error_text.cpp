#include "raster/system_error_text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <utility>

namespace {

using NAMED_ERROR = std::pair<int, const char*>;

/// EROFS, ETXTBSY, EPERM and EOVERFLOW are left to the line for unknown codes.
constexpr std::array<NAMED_ERROR, 19> open_errors = {{{EACCES, "EACCES"},
                                                      {EAGAIN, "EAGAIN"},
                                                      {EEXIST, "EEXIST"},
                                                      {EFAULT, "EFAULT"},
                                                      {EINTR, "EINTR"},
                                                      {EIO, "EIO"},
                                                      {EISDIR, "EISDIR"},
                                                      {ELOOP, "ELOOP"},
                                                      {EMFILE, "EMFILE"},
                                                      {EMULTIHOP, "EMULTIHOP"},
                                                      {ENAMETOOLONG, "ENAMETOOLONG"},
                                                      {ENFILE, "ENFILE"},
                                                      {ENOENT, "ENOENT"},
                                                      {ENOLINK, "ENOLINK"},
                                                      {ENOMEM, "ENOMEM"},
                                                      {ENOSPC, "ENOSPC"},
                                                      {ENOSR, "ENOSR"},
                                                      {ENOTDIR, "ENOTDIR"},
                                                      {ENXIO, "ENXIO"}}};

}  // namespace

std::string OpenErrorText(int error) {
  const auto* const found =
      std::find_if(open_errors.begin(), open_errors.end(),
                   [error](const NAMED_ERROR& named) { return named.first == error; });
  if (found == open_errors.end()) {
    return "open unknown system error code";
  }
  return std::string(found->second) + ": see: man page of open";
}

const char* SyncErrorText(int error) noexcept {
  switch (error) {
    case EPERM:
      return "EPERM: MS_INVALIDATE was specified and one or more of the pages is locked in memory";
    case EIO:
      return "EIO: An I/O error occurred while reading from or writing to the file system ..";
    case ENOMEM:
      return "ENOMEM: Addresses are outside the valid range for the address space of a process, "
             "or specify one or more pages that are not mapped ..";
    case EBUSY:
      return "EBUSY: Some or all of the addresses are locked ..";
    case EINVAL:
      return "EINVAL: addr is not a multiple of the page size or wrong flag ..";
    default:
      return "unhandled msync() error";
  }
}
