#pragma once

#include <string>

#include "call.h"
#include "interpolation/interpolation_kernel.h"

/// A kernel as asked for.
struct KERNEL {
  std::string type;
  int length = 0;
  int subpixels = 0;
  double coefficient = 0.0;

  /// Throws the enumeration's error and those of `INTERPOLATION_KERNEL::InitKernel`.
  void Build(INTERPOLATION_KERNEL& kernel) const;
};

/// Adds the class `Kernel`.
void AddKernel(pybind11::module_& module);
