#pragma once

#include <string>
#include <string_view>

/// The text with every control character but the tab written as "\x1b", its bytes in hexadecimal:
/// what a parameter, a file name or a pool holds must neither steer the terminal that shows it nor
/// begin a line of the log. All else stays, UTF-8 and the letters of 8-bit character sets alike.
std::string PrintableText(std::string_view text);

/// Whether the byte alone is a control character, C1 (0x80 to 0x9f) included and the tab excluded.
constexpr bool IsControlByte(char byte) noexcept {
  const auto code = static_cast<unsigned char>(byte);
  return (code < 0x20 && code != '\t') || (code >= 0x7f && code < 0xa0);
}
