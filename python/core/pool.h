#pragma once

#include <pybind11/pybind11.h>

/// Adds the functions `pool_entries` and `set_pool_entry`, which the package's class `Pool` calls.
void AddPool(pybind11::module_& module);
