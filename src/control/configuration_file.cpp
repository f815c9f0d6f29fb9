#include "control/configuration_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <string_view>

#include "base/same_file.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

/// A longer line is taken in pieces of this length, each a line of its own.
constexpr std::size_t longest_line = 1024;

/// Takes the next word off the front of the text; empty when there is none.
std::string_view TakeWord(std::string_view& text) {
  constexpr std::string_view white_space = " \t\n\v\f\r";
  text.remove_prefix(std::min(text.find_first_not_of(white_space), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(white_space));
  text.remove_prefix(word.size());
  return word;
}

/// Whether reading the file ends, should it exist.
bool IsReadable(const std::string& name) {
  struct stat status {};
  return ::stat(name.c_str(), &status) != 0 || S_ISREG(status.st_mode) || S_ISDIR(status.st_mode) ||
         IsSameFile(name.c_str(), "/dev/null");
}

}  // namespace

bool CONFIGURATION_FILE::Open(const std::string& name) {
  if (!IsReadable(name)) {
    Log() << ALARM << "Configuration file " << name << " is neither a regular file nor /dev/null!";
    return false;
  }
  file_.reset(std::fopen(name.c_str(), "re"));
  return IsOpen();
}

std::optional<std::string> CONFIGURATION_FILE::Find(const std::string& name) {
  if (!IsOpen()) {
    return std::nullopt;
  }
  std::optional<std::string> value = FindOnward(name);
  if (!value) {
    Log() << TRACE << "rewinding file position";
    std::rewind(file_.get());
    value = FindOnward(name);
  }
  return value;
}

std::optional<std::string> CONFIGURATION_FILE::FindFromStart(const std::string& name) {
  std::optional<std::string> value;
  LookFromStart([&] { value = FindOnward(name); });
  return value;
}

std::vector<std::string> CONFIGURATION_FILE::Names() {
  std::vector<std::string> names;
  LookFromStart([&] {
    std::string line;
    while (ReadLine(line)) {
      std::string_view rest = line;
      if (const std::string_view name = TakeWord(rest); !name.empty()) {
        names.emplace_back(name);
      }
    }
  });
  return names;
}

void CONFIGURATION_FILE::LookFromStart(const std::function<void()>& look) {
  const long position = IsOpen() ? std::ftell(file_.get()) : -1;
  if (position < 0) {
    return;
  }
  std::rewind(file_.get());
  look();
  std::fseek(file_.get(), position, SEEK_SET);
}

std::optional<std::string> CONFIGURATION_FILE::FindOnward(const std::string& name) {
  std::string line;
  while (ReadLine(line)) {
    std::string_view rest = line;
    const std::string_view first_word = TakeWord(rest);
    if (!first_word.empty() && first_word == name) {
      return std::string(TakeWord(rest));
    }
  }
  return std::nullopt;
}

bool CONFIGURATION_FILE::ReadLine(std::string& line) {
  line.clear();
  while (line.size() < longest_line) {
    const int character = std::getc(file_.get());
    if (character == EOF) {
      return !line.empty();
    }
    if (character == '\n') {
      return true;
    }
    line += static_cast<char>(character);
  }
  return true;
}
