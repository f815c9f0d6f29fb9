#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "pool/pool_lines.h"
#include "pool/pool_value_type.h"

/// All lines of an open pool file. Throws what `POOL_LINES::Next` throws.
std::vector<POOL_LINE> ReadPoolLines(const POOL_FILE& file);

/// The lines of one entry: its key line with the pieces in which a long one is read, and its block,
/// if that is complete.
///
/// A block is complete when "{", as many elements as the key line says and "}" follow each other,
/// whatever texts the elements are; of an unknown type, when its braces close before the next line
/// that has a key and a type.
struct POOL_ENTRY_LINES {
  std::size_t begin = 0;
  std::size_t end = 0;
  /// The same for a block whose braces close as those of an unknown type, with another number of
  /// elements than the key line says; else `end`.
  std::size_t damaged_end = 0;
};

/// All entries in their order, those of repeated keys too. Every line outside of blocks that can
/// hold a key begins one; of an entry for whose key line `goes` is true the damaged block is a
/// block as well. Takes a time in proportion to the number of lines.
std::vector<POOL_ENTRY_LINES> PoolEntryLines(
    const std::vector<POOL_LINE>& lines,
    const std::function<bool(std::size_t)>& goes = [](std::size_t) { return false; });

/// The type of the entry on a key line, UNKNOWN when its type word is none of the format.
PoolValueType TypeOnKeyLine(POOL_LINE line);
