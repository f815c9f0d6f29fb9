#include "pool/pool_entry_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

#include "base/error_exception.h"
#include "pool/pool_lines.h"
#include "system/c_locale.h"

namespace {

constexpr std::size_t key_column_width = 32;
constexpr std::size_t type_column_width = 16;

/// Pads to the width of a column; a word that fills it is still set off by one blank.
std::string Column(std::string word, std::size_t width) {
  word.resize(std::max(width, word.size() + 1), ' ');
  return word;
}

std::string ExponentForm(double value, int digits) {
  const C_LOCALE c_locale;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.*E", digits, value);
  return text.data();
}

/// Whether the text reads back as this value: the reader scans a double, refuses it beyond the
/// range of float and rounds it.
bool ReadsBackAs(const std::string& text, float value) {
  const double scanned = RealFromText(text.c_str());
  return std::abs(scanned) <= std::numeric_limits<float>::max() &&
         static_cast<float>(scanned) == value;
}

}  // namespace

POOL_ENTRY_TEXT::POOL_ENTRY_TEXT(const STRING& key, PoolValueType type) : key_(key) {
  const std::string_view word = key.Text();
  if (word.size() > pool_key_length) {
    Refuse<PARAMETER_KEY_TOO_LONG>(" << key is too long to be written");
  }
  if (word.empty() || word.front() == '#' ||
      word.find_first_of(" \t\r\n") != std::string_view::npos) {
    Refuse<ERROR_ARGUMENT>(" << key is empty, has white space or begins like a comment");
  }
  text_ =
      Column(std::string(word), key_column_width) + Column(PoolTypeWord(type), type_column_width);
}

void POOL_ENTRY_TEXT::Write(float value) {
  constexpr int digits = 6;
  const std::string text = ExponentForm(value, digits);
  if (std::isnan(value) || ReadsBackAs(text, value)) {
    text_ += text;
  } else {
    // One float in two needs more digits. Those of a double spare the largest float, too: any
    // shorter form rounds it up, out of the range that the reader accepts.
    Write(static_cast<double>(value));
  }
}

void POOL_ENTRY_TEXT::Write(double value) {
  constexpr int digits = 17;
  if (std::isinf(value)) {
    Refuse<PARAMETER_OUT_OF_BOUNDS>(" << an infinite value can not be written");
  }
  text_ += ExponentForm(value, digits);
}

void POOL_ENTRY_TEXT::Write(const STRING& value) {
  text_ += '"';
  for (const char character : std::string_view(value.Text())) {
    if (character == '\n' || character == '\r') {
      Refuse<INVALID_PARAMETER_VALUE>(" << a text with a line end can not be written");
    }
    if (character == '"' || character == '\\') {
      text_ += '\\';
    }
    text_ += character;
  }
  text_ += '"';
}

void POOL_ENTRY_TEXT::Write(const TUPLE<STRING>& value) {
  Write(value.x);
  text_ += " , ";
  Write(value.y);
}

std::string POOL_ENTRY_TEXT::Finish() {
  text_ += '\n';
  RefuseLongLines(text_, " << a value longer than a line can not be written");
  text_ += '\n';
  return std::move(text_);
}

std::string POOL_ENTRY_TEXT::CommentLines(const LIST<STRING>& comments) const {
  std::string lines;
  for (const STRING& comment : comments) {
    lines += '#';
    for (const char character : std::string_view(comment.Text())) {
      lines += character;
      if (character == '\n' || character == '\r') {
        lines += '#';
      }
    }
    lines += '\n';
  }
  RefuseLongLines(lines, " << a comment longer than a line can not be written");
  return lines;
}

void POOL_ENTRY_TEXT::RefuseLongLines(std::string_view lines, const char* reason) const {
  for (std::size_t end = 0; !lines.empty(); lines.remove_prefix(end + 1)) {
    end = lines.find_first_of("\r\n");
    if (end > pool_line_length) {
      Refuse<INVALID_PARAMETER_VALUE>(reason);
    }
  }
}

void POOL_ENTRY_TEXT::WriteRange(const RANGE<int>& range) {
  if (range.First() < 0) {
    Refuse<PARAMETER_OUT_OF_BOUNDS>(" << a negative first index can not be written");
  }
  WritePair(range.First(), range.Count());
}

void POOL_ENTRY_TEXT::NewLine() {
  constexpr std::size_t indentation = 2;
  text_ += '\n';
  text_.append(indentation * (depth_ + 1), ' ');
}

void POOL_ENTRY_TEXT::OpenBlock() {
  NewLine();
  text_ += '{';
  ++depth_;
}

void POOL_ENTRY_TEXT::CloseBlock() {
  --depth_;
  NewLine();
  text_ += '}';
}
