#include "pool/pool_merge.h"

#include <set>
#include <string_view>

#include "pool/pool_contents.h"

namespace {

using LINES = std::vector<POOL_LINE>;

constexpr std::string_view line_end_characters = "\r\n";

bool IsBlank(std::string_view text) {
  return text.find_first_not_of(" \t") == std::string_view::npos;
}

/// The line behind the entry on line `begin`, its block and the blank lines after it.
std::size_t EndOfEntry(const LINES& lines, std::size_t begin) {
  std::size_t end = EndOfPoolBlock(lines, begin + 1, TypeOnKeyLine(lines[begin]));
  while (end < lines.size() && lines[end].HasEnd() && IsBlank(lines[end].Text())) {
    ++end;
  }
  return end;
}

/// Whether the text ends with these whole lines.
bool EndsWithLines(std::string_view text, std::string_view lines) {
  if (!text.ends_with(lines)) {
    return false;
  }
  const std::string_view before = text.substr(0, text.size() - lines.size());
  return before.empty() || line_end_characters.find(before.back()) != std::string_view::npos;
}

void AppendItem(std::string& merged, const PARAMETER_POOL_ITEM& item) {
  if (!EndsWithLines(merged, item.Comments())) {
    merged += item.Comments();
  }
  merged += item.Entry();
}

/// Makes the text end with a blank line, unless it is empty.
void EndWithBlankLine(std::string& text) {
  if (text.empty()) {
    return;
  }
  if (line_end_characters.find(text.back()) == std::string_view::npos) {
    text += '\n';
  }
  std::string_view last_line = text;
  last_line.remove_suffix(last_line.ends_with("\r\n") ? 2 : 1);
  last_line.remove_prefix(last_line.find_last_of(line_end_characters) + 1);
  if (!IsBlank(last_line)) {
    text += '\n';
  }
}

}  // namespace

std::string MergeIntoPool(const std::vector<POOL_LINE>& lines, const PARAMETER_POOL_LIST& items) {
  std::string merged;
  std::set<const PARAMETER_POOL_ITEM*> met;
  for (std::size_t i = 0; i < lines.size();) {
    const POOL_LINE& line = lines[i];
    const PARAMETER_POOL_ITEM* item = line.IsKeyLine() ? items.Find(line.Key()) : nullptr;
    if (item == nullptr) {
      merged += line.Raw();
      ++i;
    } else {
      AppendItem(merged, *item);
      met.insert(item);
      i = EndOfEntry(lines, i);
    }
  }
  for (const PARAMETER_POOL_ITEM& item : items) {
    if (met.count(&item) == 0) {
      EndWithBlankLine(merged);
      AppendItem(merged, item);
    }
  }
  return merged;
}
