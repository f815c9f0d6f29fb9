#pragma once

#include <cstddef>
#include <memory>
#include <new>

/// Zero-initialised values, the first of which begins a cache line.
template <class T>
class ALIGNED_VALUES {
 public:
  ALIGNED_VALUES() = default;
  /// As many values as rows of that length have.
  ALIGNED_VALUES(std::ptrdiff_t rows, std::ptrdiff_t row_length)
      : values_(new (alignment) T[static_cast<std::size_t>(rows * row_length)]{}) {}

  T* Values() { return values_.get(); }
  const T* Values() const { return values_.get(); }

 private:
  static constexpr std::align_val_t alignment{64};

  struct RELEASE {
    void operator()(T* values) const { ::operator delete[](values, alignment); }
  };
  std::unique_ptr<T[], RELEASE> values_;
};
