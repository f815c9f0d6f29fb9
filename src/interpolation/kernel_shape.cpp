#include "interpolation/kernel_shape.h"

#include <array>
#include <cmath>

#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr double pi = 3.141592653589793;

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

// An id that two shapes shared, or that none had, would be a type without a name.
constexpr bool AreNumberedInOrder() {
  int id = 0;
  for (const KERNEL_SHAPE& shape : kernel_shapes) {
    if (shape.id != ++id) {
      return false;
    }
  }
  return true;
}
static_assert(AreNumberedInOrder());

/// The shapes between the two entries that stand for no kernel.
constexpr auto EntriesOfShapes() {
  std::array<BASIC::TYPES::ENUM_ENTRY, kernel_shapes.size() + 2> entries{};
  entries.front() = entries.back() = {"-", 0, "-"};
  for (const KERNEL_SHAPE& shape : kernel_shapes) {
    entries.at(static_cast<std::size_t>(shape.id)) = {shape.name, 0, shape.description};
  }
  return entries;
}

}  // namespace

std::span<const BASIC::TYPES::ENUM_ENTRY> BASIC::TYPES::KernelType::Entries() {
  static constexpr auto entries = EntriesOfShapes();
  return entries;
}

double CubicConvolution(double x, const KERNEL_WINDOW& /*window*/) {
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

double Sinc(double x, const KERNEL_WINDOW& /*window*/) {
  return Sinc(x);
}

double KaiserSinc(double x, const KERNEL_WINDOW& window) {
  const double u = x / static_cast<double>(window.length);
  if (u - 0.5 > 1e-12 || -1e-12 > 0.5 + u) {
    Log().Message(WARNING, "This should not execute actually %f", u);
    return 0.0 * Sinc(x);
  }
  const double b = static_cast<double>(window.weight) * pi;
  // The tolerance lets u pass the window's edge by a rounding error. A NaN (a window of length 0)
  // stays one.
  const double argument = 1.0 - 4.0 * u * u;
  const double inside = argument < 0.0 ? 0.0 : argument;
  return Sinc(x) * (BesselI0(b * std::sqrt(inside)) / BesselI0(b));
}

void RefuseEndlessWindow(float kaiser_weight) {
  if (!std::isfinite(BesselI0(static_cast<double>(kaiser_weight) * pi))) {
    Log().Message(ALARM, "INTERPOLATION_KERNEL: Kaiser weight is too large: %g",
                  static_cast<double>(kaiser_weight));
    throw ERROR_ARGUMENT();
  }
}

const KERNEL_SHAPE* ShapeOf(const BASIC::TYPES::KernelType& type) {
  const auto* const shape = std::ranges::find(kernel_shapes, type.Id(), &KERNEL_SHAPE::id);
  return shape == kernel_shapes.end() ? nullptr : shape;
}
