#include "pool/pool_merge.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "logging/logging.h"
#include "pool/pool_contents.h"

namespace {

using LINES = std::vector<POOL_LINE>;

constexpr std::string_view line_end_characters = "\r\n";

bool IsBlank(std::string_view text) {
  return text.find_first_not_of(" \t") == std::string_view::npos;
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

/// One merging, from the first line to the last.
class MERGE {
 public:
  MERGE(const LINES& lines, const PARAMETER_POOL_LIST& items) : lines_(lines), items_(items) {
    for (const POOL_ENTRY_LINES& entry : entries_) {
      if (const PARAMETER_POOL_ITEM* item = ItemOf(entry.begin)) {
        have_entry_.insert(item);
      }
    }
  }

  std::string Merged() {
    std::size_t behind = 0;
    for (const POOL_ENTRY_LINES& entry : entries_) {
      CopyTo(behind, entry.begin);
      if (const PARAMETER_POOL_ITEM* item = ItemOf(entry.begin)) {
        Write(*item);
        behind = BehindBlankLines(entry.damaged_end);
      } else {
        CopyEntry(entry);
        behind = entry.end;
      }
    }
    CopyTo(behind, lines_.size());
    for (const PARAMETER_POOL_ITEM& item : items_) {
      if (!written_.contains(&item)) {
        EndWithBlankLine(merged_);
        AppendItem(merged_, item);
      }
    }
    return std::move(merged_);
  }

 private:
  const PARAMETER_POOL_ITEM* ItemOf(std::size_t line) const {
    return lines_[line].IsKeyLine() ? items_.Find(lines_[line].Key()) : nullptr;
  }

  void Write(const PARAMETER_POOL_ITEM& item) {
    AppendItem(merged_, item);
    written_.insert(&item);
  }

  void CopyTo(std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      merged_ += lines_[i].Raw();
    }
  }

  /// Copies an entry that is not changed. For readers a line of its block can be the first one of a
  /// key. It is replaced where the key has no other entry, so that they find what was written.
  void CopyEntry(const POOL_ENTRY_LINES& entry) {
    for (std::size_t i = entry.begin; i < entry.end; ++i) {
      const PARAMETER_POOL_ITEM* item = ItemOf(i);
      if (item == nullptr || written_.contains(item)) {
        merged_ += lines_[i].Raw();
      } else if (!have_entry_.contains(item)) {
        Write(*item);
      } else {
        WarnOfHidden(*item, entry, i);
        merged_ += lines_[i].Raw();
      }
    }
  }

  void WarnOfHidden(const PARAMETER_POOL_ITEM& item, const POOL_ENTRY_LINES& entry,
                    std::size_t line) const {
    const auto number = 1 + std::count_if(lines_.begin(), lines_.begin() + static_cast<long>(line),
                                          [](const POOL_LINE& piece) { return piece.HasEnd(); });
    Log() << LOGGING_LEVEL_T::WARNING << "parameter pool: parameter key >> " << item.Key().Text()
          << " << is still found first in line " << number << ", in the block of "
          << lines_[entry.begin].Key();
  }

  std::size_t BehindBlankLines(std::size_t line) const {
    while (line < lines_.size() && lines_[line].HasEnd() && IsBlank(lines_[line].Text())) {
      ++line;
    }
    return line;
  }

  const LINES& lines_;
  const PARAMETER_POOL_LIST& items_;
  const std::vector<POOL_ENTRY_LINES> entries_ =
      PoolEntryLines(lines_, [this](std::size_t line) { return ItemOf(line) != nullptr; });
  std::set<const PARAMETER_POOL_ITEM*> have_entry_;  ///< outside of the blocks of others
  std::set<const PARAMETER_POOL_ITEM*> written_;
  std::string merged_;
};

}  // namespace

std::string MergeIntoPool(const LINES& lines, const PARAMETER_POOL_LIST& items) {
  return MERGE(lines, items).Merged();
}
