#include "run/run_log_end.h"

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include "run/text_file.h"

namespace {

/// Nothing that is looked for at the end of a log lies farther in front of it.
constexpr std::size_t end_length = 65536;

/// What follows level and program in a line "ALARM : program : text"; nothing for other lines.
std::optional<std::string_view> AlarmText(std::string_view line) {
  constexpr std::string_view level = "ALARM : ";
  constexpr std::string_view separator = " : ";
  const std::size_t program_end = line.find(separator, level.size());
  if (!line.starts_with(level) || program_end == std::string_view::npos) {
    return std::nullopt;
  }
  return line.substr(program_end + separator.size());
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

std::string ReasonOfFailure(const std::filesystem::path& log, const std::filesystem::path& screen) {
  std::ifstream file(log);
  for (std::string line; std::getline(file, line);) {
    if (const auto text = AlarmText(line)) {
      return std::string(*text);
    }
  }
  return LastLine(ReadEndOfFile(screen, end_length));
}

int SignalInLog(const std::filesystem::path& log) {
  const std::string text = ReadEndOfFile(log, end_length);
  constexpr std::string_view announcement = " got fatal signal ";
  const std::size_t begin = text.rfind(announcement);
  return begin == std::string::npos ? 0 : NumberAt(text, begin + announcement.size());
}
