#include "run/run_log_end.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string_view>

#include "basics/text_file.h"
#include "logging/logged_line.h"

namespace {

/// Nothing that is looked for at the end of a log lies farther in front of it.
constexpr std::size_t end_length = 65536;

/// What the system calls the error of a text such as "ENOENT: see: man page of open" or
/// "MEM_MGR: No such file or directory"; empty for other texts.
std::string SystemWords(const std::string& text) {
  constexpr int last_error = 133;
  for (int error = 1; error <= last_error; ++error) {
    const char* name = ::strerrorname_np(error);
    std::string words = ::strerrordesc_np(error) != nullptr ? ::strerrordesc_np(error) : "";
    if (name != nullptr &&
        (text.starts_with(std::string(name) + ": see: ") || text.ends_with(": " + words))) {
      return words;
    }
  }
  return "";
}

int NumberAt(const std::string& text, std::size_t begin) {
  return static_cast<int>(std::strtol(text.c_str() + begin, nullptr, 10));
}

std::string LastLine(std::string text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())) != 0) {
    text.pop_back();
  }
  const std::size_t begin = text.rfind('\n');
  return begin == std::string::npos ? text : text.substr(begin + 1);
}

}  // namespace

std::optional<int> PercentDone(const std::filesystem::path& log) {
  const std::string text = ReadEndOfFile(log, end_length);
  const std::size_t end = text.rfind(" % done");
  if (end == std::string::npos) {
    return std::nullopt;
  }
  const std::size_t begin = text.find_last_not_of("0123456789", end == 0 ? 0 : end - 1) + 1;
  return NumberAt(text, begin);
}

std::string ReasonAmong(const std::vector<std::string>& alarms) {
  if (alarms.empty()) {
    return "";
  }
  const auto names_a_file = [](const std::string& text) {
    return text.find('/') != std::string::npos;
  };
  auto told = std::find_if(alarms.begin(), alarms.end(), names_a_file);
  told = told == alarms.end() ? alarms.begin() : told;
  for (const std::string& text : alarms) {
    const std::string words = SystemWords(text);
    if (!words.empty() && told->find(words) == std::string::npos) {
      return names_a_file(*told) ? *told + ": " + words : words;
    }
  }
  return *told;
}

std::string ReasonOfFailure(const std::filesystem::path& log, const std::filesystem::path& screen) {
  std::ifstream file(log);
  std::vector<std::string> alarms;
  for (std::string line; std::getline(file, line);) {
    const auto logged = LOGGED_LINE::Of(line);
    if (logged && logged->level == "ALARM") {
      alarms.emplace_back(logged->text);
    }
  }
  return alarms.empty() ? LastLine(ReadEndOfFile(screen, end_length)) : ReasonAmong(alarms);
}

int SignalInLog(const std::filesystem::path& log) {
  const std::string text = ReadEndOfFile(log, end_length);
  constexpr std::string_view announcement = " got fatal signal ";
  const std::size_t begin = text.rfind(announcement);
  return begin == std::string::npos ? 0 : NumberAt(text, begin + announcement.size());
}
