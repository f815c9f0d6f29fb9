#pragma once

#include <functional>
#include <memory>

#include "call.h"
#include "mapping/mapping_base.h"

/// A mapping as Python gives it: it makes the library's for a master of a size.
struct MAPPING {
  std::function<std::unique_ptr<const MAPPING_BASE>(int n_samples, int n_lines)> make;
};

/// Adds the class `Mapping`.
void AddMapping(pybind11::module_& module);
