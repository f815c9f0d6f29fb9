#include "pool/pool_contents.h"

#include <string_view>
#include <utility>

namespace {

/// How deep the blocks of an entry nest. A type of later programs may have any block.
int BlockDepth(PoolValueType type) {
  if (type == PoolValueType::UNKNOWN || IsMatrixType(type)) {
    return 2;
  }
  return IsVectorType(type) ? 1 : 0;
}

}  // namespace

std::vector<POOL_LINE> ReadPoolLines(const POOL_FILE& file) {
  POOL_LINES reader(file);
  std::vector<POOL_LINE> lines;
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

std::size_t EndOfPoolBlock(const std::vector<POOL_LINE>& lines, std::size_t begin,
                           PoolValueType type) {
  const int deepest = BlockDepth(type);
  int depth = 0;
  for (std::size_t i = begin; i < lines.size(); ++i) {
    POOL_LINE line = lines[i];
    const std::string_view word = line.NextWord();
    if (word == "{" && depth < deepest) {
      ++depth;
      continue;
    }
    if (depth == 0 || (line.IsKeyLine() && TypeOnKeyLine(lines[i]) != PoolValueType::UNKNOWN)) {
      return begin;
    }
    if (word == "}" && --depth == 0) {
      return i + 1;
    }
  }
  return begin;
}

std::vector<POOL_ENTRY_LINES> PoolEntryLines(const std::vector<POOL_LINE>& lines) {
  std::vector<POOL_ENTRY_LINES> entries;
  for (std::size_t i = 0; i < lines.size();) {
    if (!lines[i].IsKeyLine()) {
      ++i;
      continue;
    }
    entries.push_back({i, EndOfPoolBlock(lines, i + 1, TypeOnKeyLine(lines[i]))});
    i = entries.back().end;
  }
  return entries;
}
