#pragma once

#include <cstddef>
#include <vector>

#include "pool/pool_lines.h"
#include "pool/pool_value_type.h"

/// All lines of an open pool file. Throws what `POOL_LINES::Next` throws.
std::vector<POOL_LINE> ReadPoolLines(const POOL_FILE& file);

/// The line behind the block that begins at line `begin` and belongs to an entry of the given type,
/// which is `begin` itself when there is none or when the next entry or the end of the file comes
/// before its end.
std::size_t EndOfPoolBlock(const std::vector<POOL_LINE>& lines, std::size_t begin,
                           PoolValueType type);

/// The lines of one entry: its key line and its block, as far as that is complete.
struct POOL_ENTRY_LINES {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// All entries in their order, those of repeated keys too. Every line outside of blocks that can
/// hold a key begins one.
std::vector<POOL_ENTRY_LINES> PoolEntryLines(const std::vector<POOL_LINE>& lines);

/// The type of the entry on a key line, UNKNOWN when its type word is none of the format.
PoolValueType TypeOnKeyLine(POOL_LINE line);
