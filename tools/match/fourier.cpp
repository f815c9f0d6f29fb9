#include "match/fourier.h"

#include <cstddef>
#include <mutex>

namespace {

// Estimated plans, not measured ones: the same inputs then give the same bits in every run.
constexpr unsigned plan_flags = FFTW_ESTIMATE;

/// FFTW's planner keeps what it has learnt in one place for all threads.
std::mutex& PlannerMutex() {
  static std::mutex mutex;
  return mutex;
}

fftwf_complex* Numbers(COMPLEX_ARRAY& values) {
  return reinterpret_cast<fftwf_complex*>(values.data());
}

std::size_t Area(int rows, int columns) {
  return static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
}

fftwf_plan PlanComplex(int rows, int columns, FOURIER_DIRECTION direction) {
  COMPLEX_ARRAY values(Area(rows, columns));
  const int sign = direction == FOURIER_DIRECTION::FORWARD ? FFTW_FORWARD : FFTW_BACKWARD;
  const std::lock_guard lock(PlannerMutex());
  return fftwf_plan_dft_2d(rows, columns, Numbers(values), Numbers(values), sign, plan_flags);
}

fftwf_plan PlanReal(int rows, int columns) {
  REAL_ARRAY values(Area(rows, columns));
  COMPLEX_ARRAY spectrum(Area(rows, columns / 2 + 1));
  const std::lock_guard lock(PlannerMutex());
  return fftwf_plan_dft_r2c_2d(rows, columns, values.data(), Numbers(spectrum), plan_flags);
}

fftwf_plan PlanInverse(int rows, int columns) {
  REAL_ARRAY values(Area(rows, columns));
  COMPLEX_ARRAY spectrum(Area(rows, columns / 2 + 1));
  const std::lock_guard lock(PlannerMutex());
  return fftwf_plan_dft_c2r_2d(rows, columns, Numbers(spectrum), values.data(), plan_flags);
}

}  // namespace

void FOURIER_PLAN::DESTROYER::operator()(fftwf_plan plan) const noexcept {
  const std::lock_guard lock(PlannerMutex());
  fftwf_destroy_plan(plan);
}

FOURIER_PLAN::FOURIER_PLAN(fftwf_plan plan) : plan_(plan) {
  if (!plan_) {
    throw std::bad_alloc();
  }
}

COMPLEX_TRANSFORM::COMPLEX_TRANSFORM(int rows, int columns, FOURIER_DIRECTION direction)
    : FOURIER_PLAN(PlanComplex(rows, columns, direction)) {}

void COMPLEX_TRANSFORM::operator()(COMPLEX_ARRAY& values) const {
  fftwf_execute_dft(Plan(), Numbers(values), Numbers(values));
}

REAL_TRANSFORM::REAL_TRANSFORM(int rows, int columns) : FOURIER_PLAN(PlanReal(rows, columns)) {}

void REAL_TRANSFORM::operator()(REAL_ARRAY& values, COMPLEX_ARRAY& spectrum) const {
  fftwf_execute_dft_r2c(Plan(), values.data(), Numbers(spectrum));
}

REAL_INVERSE::REAL_INVERSE(int rows, int columns) : FOURIER_PLAN(PlanInverse(rows, columns)) {}

void REAL_INVERSE::operator()(COMPLEX_ARRAY& spectrum, REAL_ARRAY& values) const {
  fftwf_execute_dft_c2r(Plan(), Numbers(spectrum), values.data());
}

int FourierLength(int least) noexcept {
  for (int length = least + least % 2;; length += 2) {
    int rest = length;
    for (const int factor : {2, 3, 5}) {
      while (rest % factor == 0) {
        rest /= factor;
      }
    }
    if (rest == 1) {
      return length;
    }
  }
}

void CorrelateSpectra(const COMPLEX_ARRAY& a, COMPLEX_ARRAY& b) noexcept {
  for (std::size_t i = 0; i < b.size(); ++i) {
    const float re = a[i].real() * b[i].real() + a[i].imag() * b[i].imag();
    const float im = a[i].real() * b[i].imag() - a[i].imag() * b[i].real();
    b[i] = {re, im};
  }
}
