#pragma once

#include <cstddef>
#include <memory>
#include <new>

/// Zero-initialised values, aligned to cache lines.
template <class T>
class ALIGNED_VALUES {
 public:
  explicit ALIGNED_VALUES(int count)
      : values_(new (alignment) T[static_cast<std::size_t>(count)]{}) {}

  T* Values() { return values_.get(); }
  const T* Values() const { return values_.get(); }

 private:
  static constexpr std::align_val_t alignment{64};

  struct RELEASE {
    void operator()(T* values) const { ::operator delete[](values, alignment); }
  };
  std::unique_ptr<T[], RELEASE> values_;
};
