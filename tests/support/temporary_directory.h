#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// A directory of its own for one test, removed with everything in it.
class TEMPORARY_DIRECTORY {
 public:
  TEMPORARY_DIRECTORY();
  ~TEMPORARY_DIRECTORY();
  TEMPORARY_DIRECTORY(const TEMPORARY_DIRECTORY&) = delete;
  TEMPORARY_DIRECTORY& operator=(const TEMPORARY_DIRECTORY&) = delete;

  const std::filesystem::path& Path() const noexcept { return path_; }
  /// The path of a file in the directory, as text.
  std::string File(std::string_view name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

/// Whole-file access; both throw std::runtime_error when the file cannot be opened.
std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, std::string_view content);
