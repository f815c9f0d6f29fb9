#pragma once

#include "base/array.h"
#include "base/error_exception.h"
#include "logging/logging.h"

/// A view on a stretch of another array's storage. It owns nothing: releasing it only forgets
/// the pointer, and the other array must outlive it.
template <class T>
class SUB_ARRAY : public ARRAY<T> {
 public:
  SUB_ARRAY() = default;
  SUB_ARRAY(const SUB_ARRAY& other) : ARRAY<T>() { this->Adopt(other.storage(), other.Range()); }
  /// Forbidden: always throws ERROR_NOT_IMPLEMENTED, so that it need not know itself.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment,cert-oop54-cpp)
  SUB_ARRAY& operator=(const SUB_ARRAY&) {
    Log() << LOGGING_LEVEL_T::ALARM
          << "never call: SUB_ARRAY<T>::operator=( const SUB_ARRAY< T >& )\n";
    throw ERROR_NOT_IMPLEMENTED();
  }
  ~SUB_ARRAY() override { SUB_ARRAY::Reset(); }

  void Free() noexcept override { this->Reset(); }

  /// A view cannot allocate: always throw ERROR_NOT_IMPLEMENTED.
  unsigned Create(const RANGE<int>&) override { return RefuseToAllocate(); }
  unsigned CreateRaw(const RANGE<int>&) override { return RefuseToAllocate(); }
  unsigned Resize(const RANGE<int>&) override { return RefuseToAllocate(); }

  /// Gives the view's first element another index; its count stays.
  virtual void SetFirst(int first) { this->SetRange(RANGE<int>(first, this->Size())); }

  /// Views the elements `part` of `source`, by the source's own indices, which the view keeps.
  /// Throws ERROR_ARGUMENT when the part leaves the source.
  virtual void Link(ARRAY<T>& source, const RANGE<int>& part) {
    const long long offset = static_cast<long long>(part.First()) - source.First();
    if (part.Count() < 0 || offset < 0 || offset + part.Count() > source.Size()) {
      Log() << LOGGING_LEVEL_T::ALARM << "SUB_ARRAY: a view can not leave its array\n";
      throw ERROR_ARGUMENT();
    }
    this->Adopt(source.Pointer(source.First() - part.First()), part);
  }

 private:
  T* storage() const noexcept { return const_cast<T*>(this->Pointer(0)); }

  [[noreturn]] static unsigned RefuseToAllocate() {
    Log() << LOGGING_LEVEL_T::ALARM << "SUB_ARRAY: a view can not allocate storage\n";
    throw ERROR_NOT_IMPLEMENTED();
  }
};
