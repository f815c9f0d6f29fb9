#include "base/directory_of.h"

#include <filesystem>

std::string DirectoryOf(const std::string& path) {
  const std::string directory = std::filesystem::path(path).parent_path().string();
  return directory.empty() ? "." : directory;
}
