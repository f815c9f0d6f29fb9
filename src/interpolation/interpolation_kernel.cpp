#include "interpolation/interpolation_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>

#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;
using BASIC::TYPES::KernelType;

constexpr double pi = 3.141592653589793;
constexpr int least_length = 6;

/// Cubic convolution over 6 points, exact for polynomials up to the third degree:
/// R. Keys, "Cubic convolution interpolation for digital image processing", 1981.
double CubicConvolution(double x) {
  const double a = std::abs(x);
  const double a2 = a * a;
  const double a3 = a2 * a;
  if (a <= 1.0) {
    return 1.3333333333333333 * a3 - 2.3333333333333335 * a2 + 1.0;
  }
  if (a <= 2.0) {
    return -0.5833333333333334 * a3 + 3.0 * a2 - 4.916666666666667 * a + 2.5;
  }
  if (a <= 3.0) {
    return 0.08333333333333333 * a3 - 0.6666666666666666 * a2 + 1.75 * a - 1.5;
  }
  return 0.0;
}

/// sin(pi x) / (pi x).
double Sinc(double x) {
  if (std::abs(x) < 1e-10) {
    return 1.0;
  }
  return std::sin(pi * x) / (pi * x);
}

/// Modified Bessel function of the first kind and order 0 by its power series
/// sum of t^m / (m!)^2, t = z^2 / 4, over exactly twelve terms.
double BesselI0(double z) {
  constexpr int term_count = 12;
  const double t = z * z * 0.25;
  double term = 1.0;
  double sum = 1.0;
  for (int m = 1; m < term_count; ++m) {
    // The squares 4, 16 and 64 are powers of two: dividing by them rounds as multiplying by
    // their reciprocals does.
    term *= t / static_cast<double>(m * m);
    sum += term;
  }
  return sum;
}

/// The window is a quotient of two Bessel functions, which is no number once they are infinite.
void RefuseEndlessWindow(float kaiser_weight) {
  if (!std::isfinite(BesselI0(static_cast<double>(kaiser_weight) * pi))) {
    Log().Message(ALARM, "INTERPOLATION_KERNEL: Kaiser weight is too large: %g",
                  static_cast<double>(kaiser_weight));
    throw ERROR_ARGUMENT();
  }
}

[[noreturn]] void RefuseForMemory(int subpix_count, int length) {
  Log() << ALARM << "INTERPOLATION_KERNEL: no memory for " << subpix_count << " rows of " << length
        << " weights\n";
  throw ERROR_NO_MEMORY();
}

/// Asks once for the memory of all rows, so that a table out of proportion is refused at once and
/// not when it has filled the machine row by row.
bool FitsIntoMemory(int subpix_count, int length) {
  const std::size_t rows = static_cast<std::size_t>(subpix_count);
  const std::size_t row_bytes =
      sizeof(ARRAY<double>) + static_cast<std::size_t>(length) * sizeof(double);
  if (row_bytes > std::numeric_limits<std::ptrdiff_t>::max() / rows) {
    return false;
  }
  // Called by name: the compiler may leave out an unused new-expression.
  void* probe = ::operator new(rows* row_bytes, std::nothrow);
  const bool fits = probe != nullptr;
  ::operator delete(probe);
  return fits;
}

}  // namespace

void INTERPOLATION_KERNEL::InitKernel(const KernelType& type, int length, int subpix_count,
                                      float coefficient) {
  rows_.clear();
  type_ = type;
  coefficient_ = coefficient;
  length_ = length;
  subpix_count_ = subpix_count;
  length_f_ = static_cast<float>(length);
  subpix_f_ = static_cast<float>(subpix_count);
  CorrectParameters();
  ResizeTable();
  FillTable();
}

void INTERPOLATION_KERNEL::CorrectParameters() {
  switch (type_.Id()) {
    case KernelType::CUBIC_CONVOLUTION:
      RequireLength(length_ == least_length,
                    "Cubic convolution kernel by default with 6 points. Length is reset to 6");
      coefficient_ = 0.0F;
      break;
    case KernelType::TRUNCATED_SINC_NO_WEIGHT:
      RequireLength(length_ >= least_length,
                    "Truncated sinc must at least have 6 points. Length is reset to 6");
      coefficient_ = 0.0F;
      break;
    case KernelType::TRUNCATED_SINC_KAISER_WEIGHT:
      RequireLength(
          length_ >= least_length,
          "Truncated sinc with kaiser weight must at least have 6 points. Length is reset to 6");
      if (!(coefficient_ >= 0.0F)) {  // NaN is no number of either kind
        Log() << WARNING
              << "Kaiser weight must be a non-negative number. Reset to zero (i.e. no weight)";
        coefficient_ = 0.0F;
      }
      RefuseEndlessWindow(coefficient_);
      break;
    default:
      break;
  }
}

void INTERPOLATION_KERNEL::RequireLength(bool fits, const char* warning) {
  if (!fits) {
    Log() << WARNING << warning;
    length_ = least_length;
  }
}

void INTERPOLATION_KERNEL::ResizeTable() {
  if (subpix_count_ < 1) {
    Log() << ALARM
          << "INTERPOLATION_KERNEL: the number of sub-pixel positions must be at least 1, not "
          << subpix_count_ << "\n";
    throw ERROR_ARGUMENT();
  }
  const int tap_count = std::max(length_, 0);
  if (!FitsIntoMemory(subpix_count_, tap_count) ||
      table_.Resize(RANGE<int>(0, subpix_count_)) != CONTAINER_OK) {
    RefuseForMemory(subpix_count_, tap_count);
  }
  ARRAY<double>* rows = table_.Origin();
  for (int k = 0; k < subpix_count_; ++k) {
    if (rows[k].Resize(RANGE<int>(0, tap_count)) != CONTAINER_OK) {
      RefuseForMemory(subpix_count_, tap_count);
    }
  }
  rows_.resize(static_cast<std::size_t>(subpix_count_));
  std::transform(rows, rows + subpix_count_, rows_.begin(),
                 [](const ARRAY<double>& row) { return row.Origin(); });
}

void INTERPOLATION_KERNEL::FillTable() {
  if (type_.Id() < KernelType::CUBIC_CONVOLUTION ||
      type_.Id() > KernelType::TRUNCATED_SINC_KAISER_WEIGHT) {
    return;
  }
  const int first_offset = -(length_ / 2 - 1);
  for (int k = 0; k < subpix_count_; ++k) {
    const double fraction = static_cast<double>(k) / static_cast<double>(subpix_f_);
    double* weights = table_.Origin()[k].Origin();
    for (int i = 0; i < length_; ++i) {
      weights[i] = Value(static_cast<double>(i + first_offset) - fraction);
    }
  }
}

double INTERPOLATION_KERNEL::Value(double x) const {
  switch (type_.Id()) {
    case KernelType::CUBIC_CONVOLUTION:
      return CubicConvolution(x);
    case KernelType::TRUNCATED_SINC_NO_WEIGHT:
      return Sinc(x);
    default:
      return KaiserSinc(x);
  }
}

/// sinc(x) I0(b sqrt(1 - 4 u^2)) / I0(b) with u = x / length and b = pi times the Kaiser weight.
double INTERPOLATION_KERNEL::KaiserSinc(double x) const {
  const double u = x / static_cast<double>(length_f_);
  if (u - 0.5 > 1e-12 || -1e-12 > 0.5 + u) {
    Log().Message(WARNING, "This should not execute actually %f", u);
    return 0.0 * Sinc(x);
  }
  const double b = static_cast<double>(coefficient_) * pi;
  // The tolerance lets u pass the window's edge by a rounding error. A NaN (a window of length 0)
  // stays one.
  const double argument = 1.0 - 4.0 * u * u;
  const double inside = argument < 0.0 ? 0.0 : argument;
  return Sinc(x) * (BesselI0(b * std::sqrt(inside)) / BesselI0(b));
}
