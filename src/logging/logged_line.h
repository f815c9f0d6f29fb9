#pragma once

#include <optional>
#include <string_view>

/// A line of a log, "LEVEL : program : text", as parts of it.
struct LOGGED_LINE {
  std::string_view level;  ///< without trailing blanks
  std::string_view text;

  /// Nothing for what is no line of a log.
  static std::optional<LOGGED_LINE> Of(std::string_view line) noexcept;
};
