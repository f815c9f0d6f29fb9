#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// What is wrong in a pool file, and on which line.
struct POOL_FAULT {
  long long line = 0;
  std::string key;
  std::string reason;
};

/// An entry of a pool file with the value that readers get.
struct LISTED_ENTRY {
  std::string key;
  std::string type;  ///< its type word as it stands there
  long long line = 0;
  /// Scalars as such, pairs, vectors and matrices as arrays; null when it can not be read. NaN is
  /// the text "nan".
  nlohmann::ordered_json value;
};

struct POOL_LISTING {
  std::vector<LISTED_ENTRY> entries;  ///< first ones of their keys, in the order of the file
  std::vector<POOL_FAULT> faults;
};

/// Reads every entry with its type. Faults are those that readers refuse, and what they pass over
/// without a word: keys that stand twice or indented, words that are taken for another number.
/// Throws CAN_NOT_OPEN_POOL.
POOL_LISTING ListPool(const std::string& path);
