#include "check_run/disk_need.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <map>

#include "base/directory_of.h"

namespace {

std::int64_t BytesOnDisk(const std::string& path) {
  constexpr std::int64_t block = 512;  // whatever the file system's own blocks are
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? std::int64_t{status.st_blocks} * block : 0;
}

}  // namespace

std::vector<DISK_NEED> DiskNeeds(const std::vector<EXPECTED_FILE>& files) {
  std::map<dev_t, DISK_NEED> needs;
  for (const EXPECTED_FILE& file : files) {
    const std::string directory = DirectoryOf(file.path);
    struct stat status {};
    struct statvfs disk {};
    if (::stat(directory.c_str(), &status) != 0 || ::statvfs(directory.c_str(), &disk) != 0) {
      continue;
    }
    DISK_NEED& need = needs[status.st_dev];
    if (need.path.empty()) {
      need.path = file.path;
      need.available = static_cast<std::int64_t>(disk.f_bavail * disk.f_frsize);
    }
    need.available += BytesOnDisk(file.path);
    need.length += file.length;
    need.written += file.written;
  }
  std::vector<DISK_NEED> result;
  result.reserve(needs.size());
  for (auto& [device, need] : needs) {
    result.push_back(std::move(need));
  }
  return result;
}
