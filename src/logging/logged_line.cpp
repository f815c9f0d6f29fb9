#include "logging/logged_line.h"

std::optional<LOGGED_LINE> LOGGED_LINE::Of(std::string_view line) noexcept {
  constexpr std::string_view separator = " : ";
  const std::size_t level_end = line.find(separator);
  if (level_end == std::string_view::npos) {
    return std::nullopt;
  }
  const std::size_t program_end = line.find(separator, level_end + separator.size());
  if (program_end == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view level = line.substr(0, level_end);
  return LOGGED_LINE{level.substr(0, level.find_last_not_of(' ') + 1),
                     line.substr(program_end + separator.size())};
}
