#pragma once

/// A key with its value, as in the pool's index/value entries.
template <class K, class V>
class INDEX {
 public:
  INDEX() = default;
  INDEX(const K& index_key, const V& index_value) : key(index_key), value(index_value) {}
  INDEX(const INDEX&) = default;
  INDEX& operator=(const INDEX&) = default;
  virtual ~INDEX() = default;

  K key{};
  V value{};
};
