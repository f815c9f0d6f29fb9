#pragma once

#include <cstddef>
#include <memory>
#include <new>

/// Zero-initialised values, the first of which begins a cache line.
template <class T>
class ALIGNED_VALUES {
 public:
  ALIGNED_VALUES() = default;
  /// As many values as rows of that length have. Throws std::bad_alloc by itself: the sanitizers'
  /// operator new ends the process.
  ALIGNED_VALUES(std::ptrdiff_t rows, std::ptrdiff_t row_length)
      : values_(new (alignment, std::nothrow) T[static_cast<std::size_t>(rows * row_length)]{}) {
    if (values_ == nullptr) {
      throw std::bad_alloc();
    }
  }

  T* Values() { return values_.get(); }
  const T* Values() const { return values_.get(); }

 private:
  static constexpr std::align_val_t alignment{64};

  struct RELEASE {
    void operator()(T* values) const { ::operator delete[](values, alignment); }
  };
  std::unique_ptr<T[], RELEASE> values_;
};
