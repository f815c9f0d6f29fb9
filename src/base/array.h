#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

#include "base/range.h"

/// Results of the operations that allocate; the caller turns them into an error of its own.
enum CONTAINER_STATUS : unsigned {
  CONTAINER_OK = 0,
  CONTAINER_NO_MEMORY = 2,
  CONTAINER_NEGATIVE_COUNT = 3
};

/// Moves a pointer to an element so that it can be indexed from `origin` instead of 0. The
/// arithmetic goes through integers because the result may lie outside the storage.
template <class T>
T* ShiftOrigin(T* storage, std::ptrdiff_t origin) noexcept {
  if (storage == nullptr) {
    return nullptr;
  }
  const auto address = reinterpret_cast<std::uintptr_t>(storage);
  // T may well be a pointer: the elements of a row table.
  const auto shift =
      static_cast<std::uintptr_t>(origin) * sizeof(T);  // NOLINT(bugprone-sizeof-expression)
  return reinterpret_cast<T*>(address - shift);         // NOLINT(performance-no-int-to-ptr)
}

/// A one-dimensional array whose indices begin at any integer. The element of index i lies at
/// storage position i - first.
///
/// Access goes through shifted pointers without bounds checks: `T* a = array.Origin(); a[i]`.
template <class T>
class ARRAY {
 public:
  ARRAY() = default;
  /// Deep copy; throws the text "ARRAY : can not copy array" when there is no memory for it.
  ARRAY(const ARRAY& other) { CopyFrom(other); }
  ARRAY& operator=(const ARRAY& other) {
    if (this != &other) {
      Free();
      CopyFrom(other);
    }
    return *this;
  }
  virtual ~ARRAY() { ARRAY::Free(); }

  /// Forgets storage and range without releasing them.
  virtual void Reset() noexcept {
    storage_ = nullptr;
    raw_ = false;
    range_ = RANGE<int>();
  }

  /// Replaces the content by `range.Count()` default elements. A negative count changes nothing.
  virtual unsigned Create(const RANGE<int>& range) {
    if (range.Count() < 0) {
      return CONTAINER_NEGATIVE_COUNT;
    }
    Free();
    range_ = range;
    storage_ = NewElements(range.Count());
    return storage_ == nullptr && range.Count() > 0 ? CONTAINER_NO_MEMORY : CONTAINER_OK;
  }

  /// As `Create`, but no element is constructed: the caller does that, and destroys them too.
  virtual unsigned CreateRaw(const RANGE<int>& range) {
    if (range.Count() < 0) {
      return CONTAINER_NEGATIVE_COUNT;
    }
    Free();
    range_ = range;
    if (range.Count() > 0) {
      const std::size_t bytes = static_cast<std::size_t>(range.Count()) * sizeof(T);
      storage_ = static_cast<T*>(::operator new(bytes, std::nothrow));
      raw_ = storage_ != nullptr;
    }
    return storage_ == nullptr && range.Count() > 0 ? CONTAINER_NO_MEMORY : CONTAINER_OK;
  }

  /// Releases the storage.
  virtual void Free() noexcept {
    if (raw_) {
      ::operator delete(storage_);
    } else {
      delete[] storage_;
    }
    ARRAY::Reset();
  }

  virtual int Size() const noexcept { return range_.Count(); }
  virtual int First() const noexcept { return range_.First(); }
  virtual int Last() const noexcept { return range_.Last(); }
  virtual RANGE<int> Range() const { return range_; }

  /// p[i] is the element at storage position i - origin; null without storage.
  virtual T* Pointer(int origin) noexcept { return ShiftOrigin(storage_, origin); }
  virtual const T* Pointer(int origin) const noexcept { return ShiftOrigin(storage_, origin); }
  /// p[i] is the element of index i; null without storage.
  virtual T* Origin() noexcept { return Pointer(range_.First()); }
  virtual const T* Origin() const noexcept { return Pointer(range_.First()); }

  /// Changes the range. The leading elements are kept by position; new ones are default
  /// elements. The present range is a no-op that keeps the storage.
  virtual unsigned Resize(const RANGE<int>& range) {
    if (range == range_) {
      return CONTAINER_OK;
    }
    if (range.Count() < 0) {
      return CONTAINER_NEGATIVE_COUNT;
    }
    T* resized = NewElements(range.Count());
    if (resized == nullptr && range.Count() > 0) {
      return CONTAINER_NO_MEMORY;
    }
    CopyElements(resized, std::min(range.Count(), HeldCount()));
    Free();
    storage_ = resized;
    range_ = range;
    return CONTAINER_OK;
  }

 protected:
  /// Points at storage that somebody else owns.
  void Adopt(T* storage, const RANGE<int>& range) noexcept {
    storage_ = storage;
    range_ = range;
  }

  void SetRange(const RANGE<int>& range) noexcept { range_ = range; }

 private:
  static T* NewElements(int count) {
    return count > 0 ? new (std::nothrow) T[static_cast<std::size_t>(count)]() : nullptr;
  }

  /// Number of elements in storage: 0 after an allocation that failed, whatever the range.
  int HeldCount() const noexcept { return storage_ == nullptr ? 0 : range_.Count(); }

  /// Copies the leading elements into new storage, which is released when a copy throws.
  void CopyElements(T* target, int count) const {
    try {
      std::copy_n(storage_, count, target);
    } catch (...) {
      delete[] target;
      throw;
    }
  }

  void CopyFrom(const ARRAY& other) {
    T* copy = NewElements(other.HeldCount());
    if (copy == nullptr && other.range_.Count() > 0) {
      throw "ARRAY : can not copy array";
    }
    other.CopyElements(copy, other.HeldCount());
    storage_ = copy;
    range_ = other.range_;
  }

  RANGE<int> range_;
  T* storage_ = nullptr;
  bool raw_ = false;
};
