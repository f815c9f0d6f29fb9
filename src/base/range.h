#pragma once

#include "base/index.h"

/// A run of indices: first index and number of elements. A negative count is invalid.
template <class T>
class RANGE : public INDEX<T, T> {
 public:
  RANGE() = default;
  RANGE(T first, T count) : INDEX<T, T>(first, count) {}

  T First() const { return this->key; }
  T Count() const { return this->value; }
  T Last() const { return this->key + (this->value - 1); }

  friend bool operator==(const RANGE& a, const RANGE& b) {
    return a.First() == b.First() && a.Count() == b.Count();
  }
};

/// The unsigned run of indices that is handed to a worker thread.
template <class T>
class URANGE : public INDEX<T, T> {
 public:
  URANGE() = default;
  URANGE(T first, T count) : INDEX<T, T>(first, count) {}

  T First() const { return this->key; }
  T Count() const { return this->value; }
  T Last() const { return this->key + (this->value - 1); }
};
