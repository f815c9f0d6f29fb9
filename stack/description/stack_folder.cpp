#include "description/stack_folder.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <random>

#include "basics/text_file.h"

std::string STACK_FOLDER::Identity() const {
  const auto word = ReadTextFile(IdentityFile());
  struct stat status {};
  if (!word || ::stat(path_.c_str(), &status) != 0) {
    return "";
  }
  // All machines see the same number of the folder; a copy has another one.
  return word->substr(0, word->find('\n')) + "-" + std::to_string(status.st_ino);
}

std::string STACK_FOLDER::MakeIdentity() const {
  if (!std::filesystem::exists(IdentityFile())) {
    std::random_device random;
    ReplaceTextFile(IdentityFile(), std::to_string(random()) + std::to_string(random()) + "\n");
  }
  return Identity();
}

bool STACK_FOLDER::Owns(const std::filesystem::path& file) const {
  const auto path = file.lexically_relative(path_);
  const std::string first = path.empty() ? "" : path.begin()->string();
  constexpr std::array folders = {"runs", "status", "slurm"};
  const std::array files = {LockFile(), StartFile(), IdentityFile()};
  return std::find(folders.begin(), folders.end(), first) != folders.end() ||
         std::any_of(files.begin(), files.end(), [&](const std::filesystem::path& own) {
           return file.string().starts_with(own.string());
         });
}
