#include "pool/pool_left_overs.h"

#include <dirent.h>
#include <fcntl.h>

#include <memory>
#include <string>

#include "base/directory_of.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

struct DIRECTORY_CLOSING {
  void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};

/// Links, pipes and devices of such names are not even opened.
bool CanBeTemporary(const dirent& entry) noexcept {
  return POOL_FILE::IsTemporaryName(entry.d_name) &&
         (entry.d_type == DT_REG || entry.d_type == DT_UNKNOWN);
}

/// Runs the body for each left-over file in the directory of a pool, as long as nothing fails.
template <class BODY>
void ForEachLeftOver(const POOL_FILE& pool, BODY body) noexcept {
  try {
    const std::string path = DirectoryOf(pool.Name());
    // The iterator of std::filesystem ends the program where memory for a name fails.
    const std::unique_ptr<DIR, DIRECTORY_CLOSING> directory(::opendir(path.c_str()));
    const dirent* entry = nullptr;
    while (directory != nullptr && (entry = ::readdir(directory.get())) != nullptr) {
      if (CanBeTemporary(*entry)) {
        const std::string name = path + (path.ends_with('/') ? "" : "/") + entry->d_name;
        const POOL_FILE file(name.c_str(), O_RDONLY | O_NOFOLLOW);
        if (file.IsOpen() && file.IsLeftOver()) {
          body(file);
        }
      }
    }
  } catch (...) {  // no memory for a name or a line, which no update needs
  }
}

}  // namespace

void TellCopiesOfEmptyPool(const POOL_FILE& pool) noexcept {
  if (!pool.IsEmpty()) {
    return;
  }
  ForEachLeftOver(pool, [&](const POOL_FILE& copy) {
    if (!copy.IsEmpty()) {
      Log() << WARNING << "parameter file " << pool.Name()
            << " is empty; an update that was killed may have left its content in: " << copy.Name();
    }
  });
}

void TellLeftOverFiles(const POOL_FILE& pool) noexcept {
  ForEachLeftOver(pool, [](const POOL_FILE& file) {
    Log() << WARNING << "an update of a parameter file that did not end has left: " << file.Name();
  });
}
