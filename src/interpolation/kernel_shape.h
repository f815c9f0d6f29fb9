#pragma once

#include <array>

#include "interpolation/kernel_type.h"

/// What the value of a kernel depends on besides the distance.
struct KERNEL_WINDOW {
  float length;  ///< as requested, never corrected
  float weight;  ///< Kaiser weight: the window's shape parameter divided by pi
};

/// Cubic convolution over 6 points, exact for polynomials up to the third degree:
/// R. Keys, "Cubic convolution interpolation for digital image processing", 1981.
double CubicConvolution(double x, const KERNEL_WINDOW& window);
/// sin(pi x) / (pi x).
double Sinc(double x, const KERNEL_WINDOW& window);
/// sinc(x) I0(b sqrt(1 - 4 u^2)) / I0(b) with u = x / length and b = pi times the Kaiser weight,
/// with a WARNING and 0 outside of the window.
double KaiserSinc(double x, const KERNEL_WINDOW& window);

/// Throws ERROR_ARGUMENT for a weight so large that the window, a quotient of two Bessel functions,
/// is no number.
void RefuseEndlessWindow(float kaiser_weight);

/// All that is true of one shape of the interpolation kernel.
struct KERNEL_SHAPE {
  BASIC::TYPES::KernelType::SHAPE id;
  const char* name;
  const char* description;
  /// The kernel at a distance of x samples.
  double (*value)(double x, const KERNEL_WINDOW& window);
  int least_length;
  bool has_other_lengths;  ///< than the least one
  const char* length_warning;
  bool takes_weight;
};

/// The table of the kernels, in the order of their ids. Names, help, tables and completions follow
/// from it.
inline constexpr std::array kernel_shapes = std::to_array<KERNEL_SHAPE>({
    {.id = BASIC::TYPES::KernelType::CUBIC_CONVOLUTION,
     .name = "cubic_convolution",
     .description = "Cubic convolution",
     .value = CubicConvolution,
     .least_length = 6,
     .has_other_lengths = false,
     .length_warning = "Cubic convolution kernel by default with 6 points. Length is reset to 6",
     .takes_weight = false},
    {.id = BASIC::TYPES::KernelType::TRUNCATED_SINC_NO_WEIGHT,
     .name = "truncated_sinc_no_weight",
     .description = "Truncated Sinc.",
     .value = Sinc,
     .least_length = 6,
     .has_other_lengths = true,
     .length_warning = "Truncated sinc must at least have 6 points. Length is reset to 6",
     .takes_weight = false},
    {.id = BASIC::TYPES::KernelType::TRUNCATED_SINC_KAISER_WEIGHT,
     .name = "truncated_sinc_kaiser_weight",
     .description = "Truncated Sinc with Kaiser weight",
     .value = KaiserSinc,
     .least_length = 6,
     .has_other_lengths = true,
     .length_warning =
         "Truncated sinc with kaiser weight must at least have 6 points. Length is reset to 6",
     .takes_weight = true},
});

/// Null for the type without a kernel.
const KERNEL_SHAPE* ShapeOf(const BASIC::TYPES::KernelType& type);
