#include "pool/pool_update.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include "logging/logging.h"
#include "pool/pool_contents.h"
#include "pool/pool_errors.h"
#include "pool/pool_merge.h"

namespace {

using enum LOGGING_LEVEL_T;

/// Makes the signals that come from outside wait while it lives: one that ended the process in
/// the middle of an update would leave half a pool, or a temporary file that nobody names. So
/// does SIGXFSZ: a file that may not grow is a failed write, which is reported as such first.
class HELD_SIGNALS {
 public:
  HELD_SIGNALS() {
    sigset_t held;
    ::sigfillset(&held);
    for (const int own_fault : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP}) {
      ::sigdelset(&held, own_fault);
    }
    ::pthread_sigmask(SIG_BLOCK, &held, &before_);
  }
  ~HELD_SIGNALS() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  HELD_SIGNALS(const HELD_SIGNALS&) = delete;
  HELD_SIGNALS& operator=(const HELD_SIGNALS&) = delete;

 private:
  sigset_t before_{};
};

std::string DirectoryOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

[[noreturn]] void RefuseForPermission(const char* path, int error) {
  Log() << ALARM << "no permission to change pool file: " << path << ": " << std::strerror(error);
  throw NO_UPDATE_PERMISSION_FOR_POOL();
}

[[noreturn]] void RefuseTemporary(const char* path, int error) {
  Log() << ALARM << "can not update parameter pool: " << path;
  RefuseForPermission(path, error);
}

/// Best effort: keeps the new name in the directory through a power failure.
void SyncDirectory(const std::string& directory) {
  POOL_FILE opened(directory.c_str(), O_RDONLY | O_DIRECTORY);
  if (opened.IsOpen()) {
    opened.Sync();
  }
}

/// A complete copy of the merged pool, safe on the disk and closed.
POOL_FILE WriteTemporary(const char* pool_name, std::string_view merged) {
  const std::string directory = DirectoryOf(pool_name);
  POOL_FILE temporary = POOL_FILE::CreateTemporary(directory);
  if (!temporary.IsOpen()) {
    RefuseTemporary(pool_name, errno);
  }
  if (!temporary.Write(merged) || !temporary.Sync() || !temporary.Close()) {
    const int error = errno;
    temporary.Keep();
    Log() << ALARM << "can not update parameter pool: " << pool_name << ": "
          << std::strerror(error);
    Log() << ALARM << "the corrupted parameter pool is:" << temporary.Name();
    Log() << ALARM << "the original parameter pool is NOT CHANGED !!";
    throw CORRUPTED_PARAMETER_POOL();
  }
  SyncDirectory(directory);
  return temporary;
}

void Overwrite(POOL_FILE& pool, std::string_view merged, POOL_FILE& temporary) {
  Log() << DEBUG << "copy " << temporary.Name() << " to " << pool.Name();
  temporary.Keep();
  if (!pool.Truncate() || !pool.Write(merged) || !pool.Sync()) {
    const int error = errno;
    Log() << ALARM << "can not update pool " << pool.Name() << ": " << std::strerror(error);
    Log() << ALARM << "the whole updated parameter pool is kept in: " << temporary.Name();
    throw ERROR_PARAMETER_POOL();
  }
  if (!temporary.Remove()) {
    Log() << WARNING << "can not remove " << temporary.Name() << ": " << std::strerror(errno);
  }
}

}  // namespace

POOL_FILE UpdatePoolFile(const char* path, const PARAMETER_POOL_LIST& items) {
  for (;;) {
    POOL_FILE pool(path, O_RDWR);
    if (!pool.IsOpen()) {
      RefuseForPermission(path, errno);
    }
    const POOL_LOCK lock(pool, POOL_LOCK::KIND::EXCLUSIVE);
    // While the lock was awaited another file may have been put into the place of this one.
    if (pool.IsAtItsName()) {
      const HELD_SIGNALS held;
      const std::string merged = MergeIntoPool(ReadPoolLines(pool), items);
      POOL_FILE temporary = WriteTemporary(path, merged);
      Overwrite(pool, merged, temporary);
      return pool;
    }
  }
}

void CheckPoolUpdate(const char* path) {
  const POOL_FILE pool(path, O_RDWR);
  if (!pool.IsOpen()) {
    RefuseForPermission(path, errno);
  }
  if (::faccessat(AT_FDCWD, DirectoryOf(path).c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
    RefuseTemporary(path, errno);
  }
}
