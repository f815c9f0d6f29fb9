#include "support/pool_text.h"

#include <array>
#include <cstdio>

std::string RealText(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.17E", value);
  return text.data();
}

namespace {

std::string Block(const std::vector<double>& values) {
  std::string block = "{\n";
  for (const double value : values) {
    block += "  " + RealText(value) + "\n";
  }
  return block + "}";
}

}  // namespace

void POOL_TEXT::Set(const std::string& key, const std::string& entry) {
  Remove(key);
  entries_.emplace_back(key, entry);
}

void POOL_TEXT::SetInteger(const std::string& key, int value) {
  Set(key, "INT_32 " + std::to_string(value));
}

void POOL_TEXT::SetReal(const std::string& key, double value) {
  Set(key, "FLT_15 " + RealText(value));
}

void POOL_TEXT::SetText(const std::string& key, const std::string& text) {
  Set(key, "STR " + text);
}

void POOL_TEXT::SetReals(const std::string& key, const std::vector<double>& values) {
  Set(key, "FLT_15_V 0 " + std::to_string(values.size()) + "\n" + Block(values));
}

void POOL_TEXT::SetRealMatrix(const std::string& key, const GRID<double>& values) {
  std::string entry = "FLT_15_M 0 " + std::to_string(values.height) + " 0 " +
                      std::to_string(values.width) + "\n{\n";
  for (int line = 0; line < values.height; ++line) {
    const auto first = values.values.begin() + std::ptrdiff_t{line} * values.width;
    entry += Block({first, first + values.width}) + "\n";
  }
  Set(key, entry + "}");
}

void POOL_TEXT::Remove(std::string_view key) {
  std::erase_if(entries_, [&](const auto& entry) { return entry.first == key; });
}

std::string POOL_TEXT::Text() const {
  std::string text = "# written by a test\n\n";
  for (const auto& [key, entry] : entries_) {
    text.append(key).append("  ").append(entry).append("\n\n");
  }
  return text;
}
