#include "logging/printable_text.h"

#include <algorithm>

namespace {

/// Length of the UTF-8 sequence of two or more bytes that the text begins with; 0 without one. An
/// overlong one, which could hide a control character, is none.
std::size_t SequenceLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  std::size_t length = 0;
  unsigned char lowest_second = 0x80;
  if (lead >= 0xc2 && lead < 0xe0) {
    length = 2;
  } else if (lead >= 0xe0 && lead < 0xf0) {
    length = 3;
    lowest_second = lead == 0xe0 ? 0xa0 : 0x80;
  } else if (lead >= 0xf0 && lead < 0xf5) {
    length = 4;
    lowest_second = lead == 0xf0 ? 0x90 : 0x80;
  }
  if (length == 0 || text.size() < length || static_cast<unsigned char>(text[1]) < lowest_second) {
    return 0;
  }
  const std::string_view rest = text.substr(1, length - 1);
  const auto continues = [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
  };
  return std::all_of(rest.begin(), rest.end(), continues) ? length : 0;
}

/// U+0080 to U+009F, which terminals obey as they do the byte alone.
bool IsControlSequence(std::string_view sequence) {
  return sequence.front() == '\xc2' && IsControlByte(sequence[1]);
}

void AppendEscaped(std::string& printable, std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    printable += "\\x";
    printable += digits[code >> 4];
    printable += digits[code & 0xf];
  }
}

}  // namespace

std::string PrintableText(std::string_view text) {
  std::string printable;
  printable.reserve(text.size());
  while (!text.empty()) {
    const std::size_t sequence_length = SequenceLength(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(sequence_length, 1));
    if (sequence_length == 0 ? IsControlByte(text.front()) : IsControlSequence(character)) {
      AppendEscaped(printable, character);
    } else {
      printable += character;
    }
    text.remove_prefix(character.size());
  }
  return printable;
}
