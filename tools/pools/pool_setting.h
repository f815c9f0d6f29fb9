#pragma once

#include <string>
#include <vector>

/// Writes an entry into a pool file, in place of any of the same key. A vector gets all words as
/// elements, a matrix rows of `columns` elements; pairs take two words each.
///
/// Throws std::invalid_argument for words that are no value of the type, before the file is
/// changed, and the errors of PARAMETER_POOL_READ_WRITE_CHANGE.
void SetPoolEntry(const std::string& path, const std::string& key, const std::string& type_word,
                  const std::vector<std::string>& words, int columns);
