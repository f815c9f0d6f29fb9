#pragma once

#include <set>
#include <string>
#include <string_view>

#include "fuzz/fuzz_target.h"
#include "pool/parameter_pool.h"
#include "pool/parameter_pool_item.h"
#include "pool/pool_values.h"

// What the targets about pools share.

/// The first words of the lines of a pool's text, the first `limit` different ones.
inline std::set<std::string> KeysOf(std::string_view text, std::size_t limit) {
  std::set<std::string> keys;
  while (!text.empty() && keys.size() < limit) {
    std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    line = line.substr(0, line.find_first_of(" \t"));
    keys.insert(std::string(line.substr(0, line.find('\0'))));
  }
  return keys;
}

/// Calls `visit(value)` with the value of an entry, read as the type that its type word names.
/// False, and nothing called, for an entry that is refused.
template <class VISIT>
bool VisitEntry(PARAMETER_POOL& pool, const STRING& key, VISIT visit) {
  PoolValueType type = PoolValueType::UNKNOWN;
  if (!Succeeds([&] { type = pool.TypeOf(key); })) {
    return false;
  }
  bool is_read = false;
  VisitPoolType(type, [&](auto value) {
    is_read = Succeeds([&] { pool.Read(key, value); });
    if (is_read) {
      visit(value);
    }
  });
  return is_read;
}

/// Whether two values are equal, where they hold a NaN as far as pools can tell: its other bits
/// are not written.
template <class T>
bool AreEqualInPools(const T& a, const T& b) {
  const auto entry_of = [](const T& value) {
    return PARAMETER_POOL_ITEM("key", value, {}).Entry();
  };
  const std::string entry = entry_of(a);
  return entry == entry_of(b) && (Bytes(a) == Bytes(b) || entry.find("NAN") != std::string::npos);
}
