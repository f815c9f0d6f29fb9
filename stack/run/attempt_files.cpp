#include "run/attempt_files.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <ctime>
#include <system_error>

namespace {

namespace fs = std::filesystem;

/// "20261122T021530.250", in UTC, and the task.
std::string LabelOf(double begun, const std::string& task) {
  const auto seconds = static_cast<std::time_t>(begun);
  std::tm time{};
  ::gmtime_r(&seconds, &time);
  std::array<char, 32> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%S.", &time);
  const std::string milliseconds = std::to_string(std::lround((begun - std::floor(begun)) * 999.0));
  return std::string(text.data(), length) + std::string(3 - milliseconds.size(), '0') +
         milliseconds + (task.empty() ? "" : "." + task);
}

void Link(const fs::path& link, const fs::path& target) {
  const fs::path fresh = link.string() + ".new";
  fs::remove(fresh);
  fs::create_symlink(target.filename(), fresh);
  fs::rename(fresh, link);
}

}  // namespace

ATTEMPT_FILES::ATTEMPT_FILES(const SLAVE_FOLDER& folder, double begun, const std::string& task) {
  const std::string ending = "." + LabelOf(begun, task);
  log_ = folder.LogFile().string() + ending;
  screen_ = folder.ScreenFile().string() + ending;
}

void ATTEMPT_FILES::Lead(const SLAVE_FOLDER& folder) const {
  Link(folder.LogFile(), log_);
  Link(folder.ScreenFile(), screen_);
}

int RemoveOldAttemptFiles(const SLAVE_FOLDER& folder) {
  int removed = 0;
  for (const fs::path& link : {folder.LogFile(), folder.ScreenFile()}) {
    std::error_code none;
    const fs::path last = fs::read_symlink(link, none).filename();
    for (const auto& entry : fs::directory_iterator(folder.Path(), none)) {
      const fs::path name = entry.path().filename();
      if (!last.empty() && name != last &&
          name.string().starts_with(link.filename().string() + ".")) {
        removed += fs::remove(entry.path(), none);
      }
    }
  }
  return removed;
}

SCREEN::SCREEN(const fs::path& file) : file_(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666) {
  if (!file_.IsOpen()) {
    throw std::system_error(errno, std::generic_category(), "can not create " + file.string());
  }
}
