#include "run/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "basics/stack_error.h"
#include "description/slave_files.h"

namespace {

namespace fs = std::filesystem;

OUTPUT_FILE FileOf(const struct stat& status) {
  constexpr std::int64_t nanoseconds = 1'000'000'000;
  return {.size = status.st_size,
          .time = status.st_mtim.tv_sec * nanoseconds + status.st_mtim.tv_nsec,
          .inode = status.st_ino};
}

bool IsThere(const fs::path& path, const OUTPUT_FILE& file, bool has_moved) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    return false;
  }
  OUTPUT_FILE found = FileOf(status);
  if (has_moved) {
    found.inode = file.inode;
  }
  return found == file;
}

bool LeadsTo(const fs::path& path, int descriptor) {
  struct stat named {};
  struct stat opened {};
  return ::stat(path.c_str(), &named) == 0 && ::fstat(descriptor, &opened) == 0 &&
         named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

}  // namespace

OUTPUTS_PLACE FindOutputs(const std::vector<fs::path>& outputs,
                          const std::vector<OUTPUT_FILE>& files, bool has_moved) {
  if (files.empty() || files.size() != outputs.size()) {
    return OUTPUTS_PLACE::GONE;
  }
  OUTPUTS_PLACE place = OUTPUTS_PLACE::FINAL;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (!IsThere(outputs[i], files[i], has_moved)) {
      if (!IsThere(PartialOutput(outputs[i]), files[i], has_moved)) {
        return OUTPUTS_PLACE::GONE;
      }
      place = OUTPUTS_PLACE::PARTIAL;
    }
  }
  return place;
}

std::vector<OUTPUT_FILE> StatesOfOutputs(const std::vector<fs::path>& outputs) {
  std::vector<OUTPUT_FILE> files;
  for (const fs::path& output : outputs) {
    struct stat status {};
    files.push_back(::stat(output.c_str(), &status) == 0 ? FileOf(status) : OUTPUT_FILE{});
  }
  return files;
}

void PublishOutputs(const std::vector<fs::path>& outputs, const std::vector<OUTPUT_FILE>& files,
                    bool has_moved) {
  for (std::size_t i = 0; i < files.size(); ++i) {
    // Under the partial name another run may be at work by now.
    if (const fs::path partial = PartialOutput(outputs[i]); IsThere(partial, files[i], has_moved)) {
      fs::rename(partial, outputs[i]);
    }
  }
}

int RemovePartialOutputs(const std::vector<fs::path>& outputs) {
  int removed = 0;
  for (const fs::path& output : outputs) {
    std::error_code failure;
    const fs::path partial = PartialOutput(output);
    if (!IsLocked(partial)) {
      removed += fs::remove(partial, failure);
    }
  }
  return removed;
}

PARTIAL_FILE::PARTIAL_FILE(const fs::path& output) : path_(PartialOutput(output)) {
  while (true) {
    // One that was left over is held until a new one, which nobody can have open, has its place.
    auto left_over = std::make_unique<FILE_LOCK>(path_, FILE_LOCK::WAY::TRY);
    lock_.swap(left_over);
    if (!lock_->IsHeld()) {
      throw STACK_ERROR("another run is at work on " + path_.string());
    }
    if (LeadsTo(path_, Descriptor())) {
      if (fs::file_size(path_) == 0) {
        return;
      }
      fs::remove(path_);
    }
  }
}

PARTIAL_FILE::~PARTIAL_FILE() {
  if (!is_kept_ && LeadsTo(path_, Descriptor())) {
    ::unlink(path_.c_str());
  }
}

int PARTIAL_FILE::DiskError() const noexcept {
  struct stat status {};
  struct statvfs disk {};
  if (::fstat(Descriptor(), &status) != 0 || status.st_size == 0 ||
      ::fallocate(Descriptor(), FALLOC_FL_KEEP_SIZE, 0, status.st_size) == 0) {
    return 0;
  }
  if (errno == ENOSPC || errno == EDQUOT || errno == EFBIG) {
    return errno;
  }
  constexpr std::int64_t bytes_a_block = 512;
  const std::int64_t needed = status.st_size - status.st_blocks * bytes_a_block;
  const bool is_full =
      ::fstatvfs(Descriptor(), &disk) == 0 &&
      static_cast<std::int64_t>(disk.f_bavail) * static_cast<std::int64_t>(disk.f_frsize) < needed;
  return is_full ? ENOSPC : 0;
}

OUTPUT_FILE PARTIAL_FILE::Keep() {
  struct stat status {};
  if (::fsync(Descriptor()) != 0 || ::fstat(Descriptor(), &status) != 0) {
    throw std::system_error(errno, std::generic_category(), "can not write " + path_.string());
  }
  if (!LeadsTo(path_, Descriptor())) {
    throw STACK_ERROR("somebody has removed " + path_.string() + " while the run was at work");
  }
  is_kept_ = true;
  return FileOf(status);
}
