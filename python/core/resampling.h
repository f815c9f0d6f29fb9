#pragma once

#include "call.h"

/// Adds the function `resample_pairs`, which `resample` of the package calls.
void AddResampling(pybind11::module_& module);
