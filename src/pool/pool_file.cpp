#include "pool/pool_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "logging/logging.h"
#include "system/c_locale.h"
#include "system/take_lock.h"
#include "system/temporary_file.h"

POOL_FILE::POOL_FILE(const char* name, int flags) : name_(name), file_(name, flags) {}

POOL_FILE POOL_FILE::CreateTemporary(const std::string& directory) {
  POOL_FILE file;
  file.name_ = directory + (directory.ends_with('/') ? "" : "/");
  file.name_.append(temporary_prefix).append("XXXXXX");
  file.file_ = FILE_DESCRIPTOR(CreateTemporaryFile(file.name_.data(), 0));
  file.is_removed_at_end_ = file.IsOpen();
  return file;
}

POOL_FILE::POOL_FILE(POOL_FILE&& other) noexcept {
  *this = std::move(other);
}

POOL_FILE& POOL_FILE::operator=(POOL_FILE&& other) noexcept {
  std::swap(name_, other.name_);
  std::swap(file_, other.file_);
  std::swap(is_removed_at_end_, other.is_removed_at_end_);
  std::swap(is_locked_, other.is_locked_);
  return *this;
}

POOL_FILE::~POOL_FILE() {
  if (is_removed_at_end_) {
    Remove();  // before its lock goes, as it would be a left-over file else
  }
}

bool POOL_FILE::IsDirectory() const noexcept {
  struct stat status = {};
  return ::fstat(file_.Get(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool POOL_FILE::IsRegular() const noexcept {
  struct stat status = {};
  return ::fstat(file_.Get(), &status) == 0 && S_ISREG(status.st_mode);
}

bool POOL_FILE::Write(std::string_view text) noexcept {
  off_t offset = 0;
  while (!text.empty()) {
    errno = ENOSPC;  // should nothing be written without a reason
    const ssize_t length = ::pwrite(file_.Get(), text.data(), text.size(), offset);
    if (length == 0 || (length < 0 && errno != EINTR)) {
      return false;
    }
    if (length > 0) {
      text.remove_prefix(static_cast<std::size_t>(length));
      offset += length;
    }
  }
  return true;
}

bool POOL_FILE::FinishWriting() noexcept {
  // Each close of a descriptor reports them. Without a free one the sync has had the last word.
  const int duplicate = ::fcntl(file_.Get(), F_DUPFD_CLOEXEC, 0);
  return duplicate < 0 || ::close(duplicate) == 0;
}

bool POOL_FILE::Remove() noexcept {
  Keep();
  return ::unlink(Name()) == 0;
}

POOL_LOCK::POOL_LOCK(const POOL_FILE& file, KIND kind) : file_(file.is_locked_ ? nullptr : &file) {
  if (file_ == nullptr) {
    return;
  }
  const int operation = kind == KIND::SHARED ? LOCK_SH : LOCK_EX;
  bool is_held = TakeLock(file.Descriptor(), operation | LOCK_NB);
  if (!is_held && errno == EWOULDBLOCK) {
    Log() << LOGGING_LEVEL_T::WARNING << "waiting for the lock of parameter file " << file.Name();
    is_held = TakeLock(file.Descriptor(), operation);
  }
  if (!is_held && kind == KIND::EXCLUSIVE) {
    Log() << LOGGING_LEVEL_T::WARNING << "can not lock parameter file " << file.Name() << ": "
          << SystemErrorText(errno);
  }
  file.is_locked_ = true;
}

POOL_LOCK::~POOL_LOCK() {
  if (file_ != nullptr) {
    file_->is_locked_ = false;
    ::flock(file_->Descriptor(), LOCK_UN);
  }
}
