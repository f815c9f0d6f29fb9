#include "pool/pool_update.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "base/directory_of.h"
#include "logging/logging.h"
#include "pool/pool_contents.h"
#include "pool/pool_errors.h"
#include "pool/pool_left_overs.h"
#include "pool/pool_merge.h"
#include "system/c_locale.h"
#include "system/held_signals.h"

namespace {

using enum LOGGING_LEVEL_T;

[[noreturn]] void RefuseForPermission(const char* path, int error) {
  Log() << ALARM << "no permission to change pool file: " << path << ": " << SystemErrorText(error);
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

/// A complete copy of the merged pool, safe on the disk.
POOL_FILE WriteTemporary(const char* pool_name, std::string_view merged) {
  const std::string directory = DirectoryOf(pool_name);
  POOL_FILE temporary = POOL_FILE::CreateTemporary(directory);
  if (!temporary.IsOpen()) {
    RefuseTemporary(pool_name, errno);
  }
  if (!temporary.Write(merged) || !temporary.Sync() || !temporary.FinishWriting()) {
    const int error = errno;
    temporary.Keep();
    Log() << ALARM << "can not update parameter pool: " << pool_name << ": "
          << SystemErrorText(error);
    Log() << ALARM << "the corrupted parameter pool is:" << temporary.Name();
    Log() << ALARM << "the original parameter pool is NOT CHANGED !!";
    throw CORRUPTED_PARAMETER_POOL();
  }
  SyncDirectory(directory);
  return temporary;
}

/// The pool is complete by now, so that nothing here may look like a failed update.
void RemoveTemporary(POOL_FILE& temporary) noexcept {
  try {
    if (!temporary.Remove()) {
      Log() << WARNING << "can not remove " << temporary.Name() << ": " << SystemErrorText(errno);
    }
  } catch (...) {  // no memory for the line
  }
}

/// Removes the copy where the pool could be put back to what it held, else keeps and names it.
[[noreturn]] void TakeBack(POOL_FILE& pool, std::string_view original, POOL_FILE& temporary,
                           int error) {
  const bool is_back = pool.Write(original) && pool.Truncate(original.size()) && pool.Sync();
  Log() << ALARM << "can not update pool " << pool.Name() << ": " << SystemErrorText(error);
  if (is_back) {
    temporary.Remove();
    Log() << ALARM << "the parameter pool has its former content again";
  } else {
    Log() << ALARM << "the whole updated parameter pool is kept in: " << temporary.Name();
  }
  throw ERROR_PARAMETER_POOL();
}

void Overwrite(POOL_FILE& pool, std::string_view original, std::string_view merged,
               POOL_FILE& temporary) {
  Log() << DEBUG << "copy " << temporary.Name() << " to " << pool.Name();
  temporary.Keep();
  if (!pool.Truncate(0) || !pool.Write(merged) || !pool.Sync()) {
    TakeBack(pool, original, temporary, errno);
  }
  RemoveTemporary(temporary);
}

std::string TextOf(const std::vector<POOL_LINE>& lines) {
  std::string text;
  for (const POOL_LINE& line : lines) {
    text += line.Raw();
  }
  return text;
}

}  // namespace

POOL_FILE OpenPoolForUpdate(const char* path) {
  POOL_FILE pool(path, O_RDWR);
  if (!pool.IsOpen()) {
    RefuseForPermission(path, errno);
  }
  return pool;
}

void UpdatePoolFile(POOL_FILE& pool, const PARAMETER_POOL_LIST& items) {
  const HELD_SIGNALS held;
  TellLeftOverFiles(pool);
  const std::vector<POOL_LINE> lines = ReadPoolLines(pool);
  const std::string original = TextOf(lines);
  const std::string merged = MergeIntoPool(lines, items);
  POOL_FILE temporary = WriteTemporary(pool.Name(), merged);
  Overwrite(pool, original, merged, temporary);
}

void CheckPoolUpdate(const char* path) {
  const POOL_FILE pool = OpenPoolForUpdate(path);
  if (::faccessat(AT_FDCWD, DirectoryOf(path).c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
    RefuseTemporary(path, errno);
  }
}
