#include "support/temporary_directory.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

TEMPORARY_DIRECTORY::TEMPORARY_DIRECTORY() {
  std::string name = (std::filesystem::temp_directory_path() / "resample_test_XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("can not create a temporary directory");
  }
  path_ = name;
}

TEMPORARY_DIRECTORY::~TEMPORARY_DIRECTORY() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error("can not open " + path.string());
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const std::filesystem::path& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  if (!file.flush()) {
    throw std::runtime_error("can not write " + path.string());
  }
}
