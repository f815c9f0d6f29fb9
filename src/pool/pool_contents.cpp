#include "pool/pool_contents.h"

#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

namespace {

using LINES = std::vector<POOL_LINE>;

/// How often something occurs in front of each line, so that a range is counted in one step.
class OCCURRENCES {
 public:
  void Add(bool occurs) { before_.push_back(before_.back() + (occurs ? 1 : 0)); }
  bool AnyIn(std::size_t begin, std::size_t end) const { return before_[end] > before_[begin]; }

 private:
  std::vector<std::size_t> before_ = {0};
};

/// The number of elements that a key line tells behind the first index; more than any file has
/// lines for what is no number.
std::size_t TakeCount(POOL_LINE& line) {
  line.NextWord();
  const std::string word(line.NextWord());
  const bool is_number =
      !word.empty() && word.find_first_not_of("+-0123456789") == std::string::npos;
  const long long count = is_number ? std::strtoll(word.c_str(), nullptr, 10) : -1;
  return count < 0 ? static_cast<std::size_t>(-1) : static_cast<std::size_t>(count);
}

bool HoldsTexts(PoolValueType type) {
  using enum PoolValueType;
  return type == STR_V || type == STR_STR_V || type == STR_M;
}

class BLOCK_SEARCH {
 public:
  explicit BLOCK_SEARCH(const LINES& lines) : lines_(lines) {
    for (const POOL_LINE& original : lines) {
      POOL_LINE line = original;
      const std::string_view word = line.NextWord();
      words_.push_back(word == "{" ? WORD::OPENS : word == "}" ? WORD::CLOSES : WORD::OTHER);
      const bool is_alone = line.NextWord().empty();
      // Readers take neither a blank line nor a "}" that stands alone for an element.
      const bool is_no_element = word.empty() || (word == "}" && is_alone);
      has_type_.push_back(original.IsKeyLine() &&
                          TypeOnKeyLine(original) != PoolValueType::UNKNOWN);
      no_texts_.Add(is_no_element);
      no_values_.Add(is_no_element || has_type_.back());
    }
    FollowBraces();
  }

  /// The entry that this key line begins.
  POOL_ENTRY_LINES EntryAt(std::size_t key_line) const {
    std::size_t begin = key_line + 1;
    while (begin < lines_.size() && !lines_[begin - 1].HasEnd() && !has_type_[begin]) {
      ++begin;
    }
    const PoolValueType type = TypeOnKeyLine(lines_[key_line]);
    if (type == PoolValueType::UNKNOWN) {
      const std::size_t end = EndByBraces(begin, type);
      return {key_line, end, end};
    }
    const std::size_t end = EndByCount(begin, key_line, type);
    return {key_line, end, end > begin ? end : EndByBraces(begin, type)};
  }

 private:
  enum class WORD { OPENS, CLOSES, OTHER };

  bool Is(WORD word, std::size_t line) const {
    return line < words_.size() && words_[line] == word;
  }

  /// The line behind a block, `begin` where there is none; so do the others.
  std::size_t EndByCount(std::size_t begin, std::size_t key_line, PoolValueType type) const {
    const OCCURRENCES& unfit = HoldsTexts(type) ? no_texts_ : no_values_;
    POOL_LINE line = lines_[key_line];
    line.NextWord();
    line.NextWord();
    const std::size_t count = TakeCount(line);
    if (IsVectorType(type)) {
      return EndOfVector(begin, count, unfit);
    }
    return IsMatrixType(type) ? EndOfMatrix(begin, count, TakeCount(line), unfit) : begin;
  }

  std::size_t EndOfVector(std::size_t begin, std::size_t count, const OCCURRENCES& unfit) const {
    if (count >= lines_.size()) {
      return begin;
    }
    const std::size_t closing = begin + 1 + count;
    const bool fits =
        Is(WORD::OPENS, begin) && Is(WORD::CLOSES, closing) && !unfit.AnyIn(begin + 1, closing);
    return fits ? closing + 1 : begin;
  }

  std::size_t EndOfMatrix(std::size_t begin, std::size_t rows, std::size_t columns,
                          const OCCURRENCES& unfit) const {
    if (!Is(WORD::OPENS, begin)) {
      return begin;
    }
    std::size_t end = begin + 1;
    for (std::size_t row = 0; row < rows; ++row) {
      const std::size_t row_begin = std::exchange(end, EndOfVector(end, columns, unfit));
      if (end == row_begin) {
        return begin;
      }
    }
    return Is(WORD::CLOSES, end) ? end + 1 : begin;
  }

  /// A type of later programs may have any block.
  std::size_t EndByBraces(std::size_t begin, PoolValueType type) const {
    if (!Is(WORD::OPENS, begin)) {
      return begin;
    }
    const bool is_nested = type == PoolValueType::UNKNOWN || IsMatrixType(type);
    const std::size_t end = is_nested            ? behind_outer_[begin + 1]
                            : IsVectorType(type) ? behind_vector_[begin + 1]
                                                 : nowhere;
    return end == nowhere ? begin : end;
  }

  /// From the last line to the first, so that each line is looked at once.
  void FollowBraces() {
    const std::size_t count = lines_.size();
    behind_vector_.assign(count + 1, nowhere);
    behind_outer_ = behind_vector_;
    behind_inner_ = behind_vector_;
    for (std::size_t i = count; i-- > 0;) {
      const bool closes = words_[i] == WORD::CLOSES;
      if (!has_type_[i]) {
        behind_vector_[i] = closes ? i + 1 : behind_vector_[i + 1];
        behind_outer_[i] = closes ? i + 1 : behind_outer_[i + 1];
        behind_inner_[i] = closes ? behind_outer_[i + 1] : behind_inner_[i + 1];
      }
      if (words_[i] == WORD::OPENS) {
        behind_outer_[i] = behind_inner_[i + 1];
      }
    }
  }

  static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

  const LINES& lines_;
  std::vector<WORD> words_;
  std::vector<bool> has_type_;  ///< of lines that have a key as well
  OCCURRENCES no_texts_;        ///< lines that are no element of a block of texts
  OCCURRENCES no_values_;       ///< lines that are no element of another block
  /// The line behind the "}" that ends a block, for each line that stands in a vector's block, in a
  /// matrix' block outside its rows, and in one of its rows.
  std::vector<std::size_t> behind_vector_;
  std::vector<std::size_t> behind_outer_;
  std::vector<std::size_t> behind_inner_;
};

}  // namespace

std::vector<POOL_LINE> ReadPoolLines(const POOL_FILE& file) {
  POOL_LINES reader(file);
  LINES lines;
  for (POOL_LINE line; reader.Next(line);) {
    lines.push_back(std::move(line));
  }
  return lines;
}

/// Takes a copy for the sake of its cursor.
PoolValueType TypeOnKeyLine(POOL_LINE line) {
  line.NextWord();
  return PoolTypeOfWord(line.NextWord());
}

std::vector<POOL_ENTRY_LINES> PoolEntryLines(const LINES& lines,
                                             const std::function<bool(std::size_t)>& goes) {
  const BLOCK_SEARCH blocks(lines);
  std::vector<POOL_ENTRY_LINES> entries;
  for (std::size_t i = 0; i < lines.size();) {
    if (!lines[i].IsKeyLine()) {
      ++i;
      continue;
    }
    entries.push_back(blocks.EntryAt(i));
    i = goes(i) ? entries.back().damaged_end : entries.back().end;
  }
  return entries;
}
