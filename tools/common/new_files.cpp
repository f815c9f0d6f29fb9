#include "common/new_files.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <set>
#include <system_error>

#include "system/file_descriptor.h"

namespace {

using std::filesystem::path;

/// The hidden folders of this process. The mutex is held from the first to the last step of making,
/// emptying and removing one, so that an interruption finds it either way.
struct HIDDEN_FOLDERS {
  std::mutex mutex;
  std::set<path> paths;
};

HIDDEN_FOLDERS& HiddenFolders() {
  static HIDDEN_FOLDERS folders;
  return folders;
}

path MakeHiddenFolder(const path& directory) {
  std::string name = directory / ".slctool-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(),
                            "can not make a file in " + directory.string());
  }
  return name;
}

void Remove(const path& folder) noexcept {
  std::error_code kept;
  std::filesystem::remove_all(folder, kept);
}

/// Why no file of this name can be made, as far as the name tells; 0 when it can.
int ErrorOfName(const path& name) {
  using std::filesystem::file_type;
  const auto type = std::filesystem::status(name).type();
  if (name.filename().empty() || type == file_type::directory) {
    return EISDIR;
  }
  if (name.has_parent_path() && !std::filesystem::exists(name.parent_path())) {
    return ENOENT;
  }
  return type == file_type::not_found || type == file_type::regular ? 0 : EINVAL;
}

/// The file that would be emptied if it were written in place.
path FinalPath(const std::string& given) {
  path final_path =
      std::filesystem::is_symlink(given) ? std::filesystem::weakly_canonical(given) : path(given);
  if (const int error = ErrorOfName(final_path)) {
    throw std::system_error(error, std::generic_category(), "can not make " + given);
  }
  return final_path;
}

}  // namespace

NEW_FILES::NEW_FILES(const path& directory) : directory_(directory.empty() ? "." : directory) {
  HIDDEN_FOLDERS& folders = HiddenFolders();
  const std::lock_guard lock(folders.mutex);
  hidden_ = MakeHiddenFolder(directory_);
  folders.paths.insert(hidden_);
}

NEW_FILES::~NEW_FILES() {
  HIDDEN_FOLDERS& folders = HiddenFolders();
  const std::lock_guard lock(folders.mutex);
  Remove(hidden_);
  folders.paths.erase(hidden_);
}

void NEW_FILES::Finish() {
  const std::lock_guard lock(HiddenFolders().mutex);
  for (const auto& file : std::filesystem::directory_iterator(hidden_)) {
    std::filesystem::rename(file.path(), directory_ / file.path().filename());
  }
}

NEW_FILE::NEW_FILE(const std::string& path)
    : final_path_(FinalPath(path)), files_(final_path_.parent_path()) {}

void WriteWholeFile(const std::string& path, std::string_view bytes) {
  NEW_FILE file(path);
  const FILE_DESCRIPTOR descriptor(file.Path().c_str(), O_WRONLY | O_CREAT, 0666);
  if (!descriptor.IsOpen() || !descriptor.Write(bytes.data(), bytes.size())) {
    throw std::system_error(errno, std::generic_category(), "can not write " + path);
  }
  file.Finish();
}

void RemoveNewFiles() noexcept {
  HIDDEN_FOLDERS& folders = HiddenFolders();
  folders.mutex.lock();  // for good
  for (const path& folder : folders.paths) {
    Remove(folder);
  }
}
