#pragma once

#include <cstring>

/// The value at an address that need not be aligned: pixels behind a colour map are not when the
/// map's length is no multiple of their size.
template <class T>
T LoadUnaligned(const T* address) {
  T value;
  std::memcpy(&value, static_cast<const void*>(address), sizeof(value));
  return value;
}
