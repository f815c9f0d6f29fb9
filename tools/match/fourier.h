#pragma once

#include <fftw3.h>

#include <complex>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

/// Memory that is aligned as FFTW's fastest code wants it.
template <class T>
struct FOURIER_ALLOCATOR {
  using value_type = T;

  T* allocate(std::size_t count) {
    void* const memory = fftwf_malloc(count * sizeof(T));
    if (memory == nullptr) {
      throw std::bad_alloc();
    }
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t) noexcept { fftwf_free(memory); }
  bool operator==(const FOURIER_ALLOCATOR&) const = default;
};

template <class T>
using FOURIER_ARRAY = std::vector<T, FOURIER_ALLOCATOR<T>>;
using COMPLEX_ARRAY = FOURIER_ARRAY<std::complex<float>>;
using REAL_ARRAY = FOURIER_ARRAY<float>;

/// A two-dimensional Fourier transform of a fixed size, rows one after the other, without any
/// scaling. Any number of threads may make plans and use them at once.
class FOURIER_PLAN {
 protected:
  /// Throws std::bad_alloc when FFTW has made no plan.
  explicit FOURIER_PLAN(fftwf_plan plan);

  fftwf_plan Plan() const noexcept { return plan_.get(); }

 private:
  struct DESTROYER {
    void operator()(fftwf_plan plan) const noexcept;
  };

  std::unique_ptr<std::remove_pointer_t<fftwf_plan>, DESTROYER> plan_;
};

enum class FOURIER_DIRECTION { FORWARD, BACKWARD };

/// Complex numbers, in place.
class COMPLEX_TRANSFORM : FOURIER_PLAN {
 public:
  COMPLEX_TRANSFORM(int rows, int columns, FOURIER_DIRECTION direction);
  void operator()(COMPLEX_ARRAY& values) const;
};

/// Real numbers to columns / 2 + 1 complex ones a row.
class REAL_TRANSFORM : FOURIER_PLAN {
 public:
  REAL_TRANSFORM(int rows, int columns);
  void operator()(REAL_ARRAY& values, COMPLEX_ARRAY& spectrum) const;
};

/// The other way, which destroys the spectrum.
class REAL_INVERSE : FOURIER_PLAN {
 public:
  REAL_INVERSE(int rows, int columns);
  void operator()(COMPLEX_ARRAY& spectrum, REAL_ARRAY& values) const;
};

/// The smallest even length of at least `least` that has no prime factors above 5.
int FourierLength(int least) noexcept;

/// The spectrum of the circular correlation sum of a(i) b(i + lag): conj(a) b, written to `b`.
void CorrelateSpectra(const COMPLEX_ARRAY& a, COMPLEX_ARRAY& b) noexcept;
