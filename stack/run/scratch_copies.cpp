#include "run/scratch_copies.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <system_error>
#include <vector>

#include "basics/stack_error.h"
#include "description/slave_files.h"
#include "system/file_descriptor.h"

namespace {

namespace fs = std::filesystem;

/// "$NAME/REST" with the variable's value.
fs::path Expanded(const std::string& path) {
  if (!path.starts_with('$')) {
    return path;
  }
  const std::size_t end = std::min(path.find('/'), path.size());
  const std::string name = path.substr(1, end - 1);
  const char* value = std::getenv(name.c_str());
  if (value == nullptr || *value == '\0') {
    throw STACK_ERROR("no " + name + " in the environment for the scratch folder " + path);
  }
  return value + path.substr(end);
}

fs::path NewFolder(const fs::path& parent, const std::string& name) {
  std::string folder = (parent / ("resample-stack." + name + ".XXXXXX")).string();
  if (::mkdtemp(folder.data()) == nullptr) {
    throw STACK_ERROR("can not create a folder in the scratch folder " + parent.string());
  }
  return folder;
}

[[noreturn]] void Fail(const std::string& what, const fs::path& path) {
  throw std::system_error(errno, std::generic_category(), what + path.string());
}

/// In large blocks, since each request takes its time on the way to a storage; blocks of zeros are
/// left out, as a run leaves them.
void CopyFile(const fs::path& from, const fs::path& to) {
  constexpr std::size_t block_size = 4 << 20;
  const FILE_DESCRIPTOR source(from.c_str(), O_RDONLY);
  const FILE_DESCRIPTOR copy(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  std::vector<char> block(block_size);
  ssize_t length = source.IsOpen() ? 1 : -1;
  while (length > 0 && (length = ::read(source.Get(), block.data(), block_size)) > 0) {
    const bool is_zero =
        std::all_of(block.begin(), block.begin() + length, [](char byte) { return byte == 0; });
    if (is_zero ? ::lseek(copy.Get(), length, SEEK_CUR) < 0
                : !copy.Write(block.data(), static_cast<std::size_t>(length))) {
      Fail("can not write ", to);
    }
  }
  if (length < 0) {
    Fail("can not read ", from);
  }
  if (!copy.SetLength(::lseek(copy.Get(), 0, SEEK_CUR))) {
    Fail("can not write ", to);
  }
}

/// Forgets what memory holds of a file that is on the disk, so that the disk is read next.
void DropPages(const fs::path& path) {
  const FILE_DESCRIPTOR file(path.c_str(), O_RDONLY);
  file.Sync();
  ::posix_fadvise(file.Get(), 0, 0, POSIX_FADV_DONTNEED);
}

bool HaveSameContent(const fs::path& a, const fs::path& b) {
  std::ifstream file_a(a, std::ios::binary);
  std::ifstream file_b(b, std::ios::binary);
  constexpr std::size_t block = 1 << 20;
  std::vector<char> bytes_a(block);
  std::vector<char> bytes_b(block);
  while (file_a && file_b) {
    file_a.read(bytes_a.data(), block);
    file_b.read(bytes_b.data(), block);
    if (file_a.gcount() != file_b.gcount() ||
        !std::equal(bytes_a.begin(), bytes_a.begin() + file_a.gcount(), bytes_b.begin())) {
      return false;
    }
  }
  return file_a.eof() && file_b.eof();
}

}  // namespace

SCRATCH_COPIES::SCRATCH_COPIES(const SLAVE_PLAN& plan, const std::string& name)
    : folder_(NewFolder(Expanded(plan.scratch), name)), parameters_(plan.RunParameters()) {
  try {
    for (const std::string& raster : ParametersOf({PARAMETER_KIND::RASTER})) {
      if (const auto found = parameters_.find(raster); found != parameters_.end()) {
        const fs::path copy = folder_ / raster;
        CopyFile(found->second, copy);
        found->second = copy.string();
      }
    }
  } catch (const std::system_error&) {
    fs::remove_all(folder_);
    throw;
  }
  for (const std::string& output : ParametersOf({PARAMETER_KIND::OUTPUT})) {
    if (const auto found = parameters_.find(output); found != parameters_.end()) {
      outputs_[folder_ / output] = found->second;
      found->second = (folder_ / output).string();
    }
  }
}

SCRATCH_COPIES::~SCRATCH_COPIES() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

void SCRATCH_COPIES::BringOutputsBack() const {
  for (const auto& [copy, output] : outputs_) {
    CopyFile(copy, output);
    DropPages(output);
    if (!HaveSameContent(copy, output)) {
      throw STACK_ERROR(output.string() + " does not hold what was written to it");
    }
  }
}
