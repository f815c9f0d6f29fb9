#include "report/html.h"

#include <algorithm>
#include <cstdint>

namespace {

unsigned char Code(char byte) {
  return static_cast<unsigned char>(byte);
}

/// Length of the UTF-8 character that the text begins with; 0 when it begins with none.
std::size_t CharacterLength(std::string_view text) {
  const unsigned char lead = Code(text.front());
  if (lead < 0x80) {
    return lead >= 0x20 && lead != 0x7f ? 1 : 0;
  }
  const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  if (lead < 0xc2 || lead > 0xf4 || text.size() < length) {
    return 0;
  }
  const std::string_view rest = text.substr(1, length - 1);
  const auto continues = [](char byte) { return (Code(byte) & 0xc0) == 0x80; };
  // Overlong forms, surrogates and what lies beyond the last character.
  const unsigned char second = Code(rest.front());
  const bool exists = !(lead == 0xe0 && second < 0xa0) && !(lead == 0xed && second > 0x9f) &&
                      !(lead == 0xf0 && second < 0x90) && !(lead == 0xf4 && second > 0x8f) &&
                      !(lead == 0xc2 && second < 0xa0);
  return exists && std::all_of(rest.begin(), rest.end(), continues) ? length : 0;
}

std::string_view Entity(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

}  // namespace

std::string Escaped(std::string_view text) {
  std::string escaped;
  while (!text.empty()) {
    std::size_t length = text.front() == '\t' || text.front() == '\n' ? 1 : CharacterLength(text);
    if (length == 0) {
      escaped += "\xef\xbf\xbd";
      length = 1;
    } else if (const std::string_view entity = Entity(text.front()); !entity.empty()) {
      escaped += entity;
    } else {
      escaped += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
  return escaped;
}

std::string Base64(std::string_view bytes) {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (; !bytes.empty(); bytes.remove_prefix(std::min<std::size_t>(3, bytes.size()))) {
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      group = group << 8 | (i < bytes.size() ? Code(bytes[i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      text += i <= bytes.size() ? digits[group >> (18 - 6 * i) & 0x3f] : '=';
    }
  }
  return text;
}
