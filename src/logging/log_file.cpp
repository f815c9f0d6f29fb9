#include "logging/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <utility>

#include "system/c_locale.h"
#include "system/held_signals.h"
#include "system/temporary_file.h"
#include "system/whole_write.h"

namespace {

constexpr const char* temporary_prefix = "log.";

bool IsRegular(int file, struct stat& status) {
  return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

/// Takes the beginning of a line back.
void CutEnd(int file, std::size_t length) {
  struct stat status {};
  if (length > 0 && IsRegular(file, status)) {
    // Should it fail, the cut line stays.
    [[maybe_unused]] const int result =
        ::ftruncate(file, status.st_size - static_cast<off_t>(length));
  }
}

/// All of the lines, or nothing of the last one; 0, or the errno of the failure. A pipe whose
/// reader has gone is a failure and no signal.
int WriteLines(int file, std::string_view lines) {
  const NO_PIPE_SIGNAL no_signal;
  const std::size_t written = WriteWhole(file, lines);
  if (written == lines.size()) {
    return 0;
  }
  const int error = errno;
  CutEnd(file, written - (lines.substr(0, written).rfind('\n') + 1));
  return error;
}

/// The whole content of a file, nothing and `errno` when it can not be read.
std::optional<std::string> Content(const std::string& name) {
  const FILE_DESCRIPTOR file(name.c_str(), O_RDONLY);
  std::string content;
  std::array<char, 4096> block{};
  while (file.IsOpen()) {
    const ssize_t length = ::read(file.Get(), block.data(), block.size());
    if (length == 0) {
      return content;
    }
    if (length > 0) {
      content.append(block.data(), static_cast<std::size_t>(length));
    } else if (errno != EINTR) {
      break;
    }
  }
  return std::nullopt;
}

/// Those of killed processes of this user: nobody knows them, and their lines are of no run.
void RemoveLeftOvers(const char* directory) noexcept {
  ForEachLeftOver(directory, temporary_prefix, [](const std::string& path, int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) == 0 && status.st_uid == ::geteuid()) {
      ::unlink(path.c_str());
    }
  });
}

std::string Reason(int error) {
  return "reason: " + SystemErrorText(error);
}

}  // namespace

LOG_FILE::TROUBLE LOG_FILE::Open(const std::string& name) {
  // The descriptor does not block, so that no FIFO is waited for without end.
  FILE_DESCRIPTOR file(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0666);
  if (!file.IsOpen()) {
    return {" can not open logging file: " + name, Reason(errno)};
  }
  if (temporary_name_.empty()) {
    name_ = name;
    Hold(std::move(file));
    return {};
  }
  const std::optional<std::string> lines_so_far = Content(temporary_name_);
  if (!lines_so_far) {
    const std::string reason = Reason(errno);
    KeepTemporaryFile(file_.Get());
    name_ = name;
    Hold(std::move(file));
    return {" can not reopen tmp logging file: " + LeaveTemporary(), reason};
  }
  if (const int error = WriteLines(file.Get(), *lines_so_far); error != 0) {
    KeepTemporaryFile(file_.Get());
    name_ = LeaveTemporary();
    return {"can not write logging file: " + name, Reason(error), "the log is kept in: " + name_};
  }
  TROUBLE trouble = RemoveTemporary();
  name_ = name;
  Hold(std::move(file));
  return trouble;
}

LOG_FILE::TROUBLE LOG_FILE::Write(std::string_view lines) {
  if (!has_begun_) {
    OpenTemporary();
  }
  if (!file_.IsOpen()) {
    return {};
  }
  const int error = WriteLines(file_.Get(), lines);
  if (error == 0) {
    return {};
  }
  const std::string name = temporary_name_.empty() ? name_ : temporary_name_;
  if (!temporary_name_.empty()) {
    KeepTemporaryFile(file_.Get());  // for `Open`, which carries over what it holds
  }
  descriptor_ = -1;
  file_.Close();
  return {"can not write logging file: " + name, Reason(error), "logging goes on without it"};
}

LOG_FILE::TROUBLE LOG_FILE::Close() {
  TROUBLE trouble = RemoveTemporary();
  descriptor_ = -1;
  file_.Close();
  return trouble;
}

void LOG_FILE::RemoveTemporaryFile() const noexcept {
  if (const char* const name = published_temporary_name_; name != nullptr) {
    ::unlink(name);
  }
}

void LOG_FILE::OpenTemporary() {
  has_begun_ = true;
  // A signal that ended the process between creation and publication would leave the file behind.
  const HELD_SIGNALS held;
  for (const char* directory : {"/tmp/", "/var/tmp/", "./"}) {
    RemoveLeftOvers(directory);
    std::string name = std::string(directory) + temporary_prefix + "XXXXXX";
    FILE_DESCRIPTOR file(CreateTemporaryFile(name.data(), O_APPEND));
    if (file.IsOpen()) {
      temporary_name_ = std::move(name);
      published_temporary_name_ = temporary_name_.c_str();
      Hold(std::move(file));
      return;
    }
  }
}

/// Before the file is closed: without its lock another process takes it for left over.
LOG_FILE::TROUBLE LOG_FILE::RemoveTemporary() {
  if (temporary_name_.empty()) {
    return {};
  }
  const int error = ::unlink(temporary_name_.c_str()) == 0 ? 0 : errno;
  const std::string name = LeaveTemporary();
  return error == 0 ? TROUBLE() : TROUBLE{"can not remove tmp file: " + name, Reason(error)};
}

std::string LOG_FILE::LeaveTemporary() noexcept {
  published_temporary_name_ = nullptr;
  return std::exchange(temporary_name_, {});
}

void LOG_FILE::Hold(FILE_DESCRIPTOR file) noexcept {
  has_begun_ = true;
  file_ = std::move(file);
  descriptor_ = file_.Get();
}
