#include "base/same_file.h"

#include <sys/stat.h>

#include <system_error>

namespace {

constexpr int most_links = 40;

std::filesystem::path Target(const std::filesystem::path& link) {
  std::error_code no_link;
  return link.parent_path() / std::filesystem::read_symlink(link, no_link);
}

bool IsLink(const std::filesystem::path& path) {
  std::error_code missing;
  return std::filesystem::is_symlink(path, missing);
}

/// The path without links, dots and a relative beginning, as far as it exists.
std::filesystem::path Resolved(const std::filesystem::path& path) {
  std::error_code unresolved;
  const std::filesystem::path absolute = std::filesystem::absolute(path, unresolved);
  return std::filesystem::weakly_canonical(absolute, unresolved);
}

/// The same for a directory entry, which itself is not followed.
std::filesystem::path ResolvedEntry(const std::filesystem::path& path) {
  std::error_code unresolved;
  const std::filesystem::path absolute = std::filesystem::absolute(path, unresolved);
  return Resolved(absolute.parent_path()) / absolute.filename();
}

}  // namespace

bool IsSameFile(const char* a, const char* b) noexcept {
  struct stat status_a {};
  struct stat status_b {};
  return ::stat(a, &status_a) == 0 && ::stat(b, &status_b) == 0 &&
         status_a.st_dev == status_b.st_dev && status_a.st_ino == status_b.st_ino;
}

bool IsSamePath(const std::string& a, const std::string& b) {
  return IsSameFile(a.c_str(), b.c_str()) || Resolved(BehindLinks(a)) == Resolved(BehindLinks(b));
}

std::filesystem::path BehindLinks(std::filesystem::path path) {
  for (int i = 0; i < most_links && IsLink(path); ++i) {
    path = Target(path);
  }
  return path;
}

bool LeadsThrough(std::filesystem::path path, const std::filesystem::path& entry) {
  const std::filesystem::path resolved = ResolvedEntry(entry);
  for (int i = 0; i < most_links; ++i) {
    if (ResolvedEntry(path) == resolved) {
      return true;
    }
    if (!IsLink(path)) {
      return false;
    }
    path = Target(path);
  }
  return false;
}
