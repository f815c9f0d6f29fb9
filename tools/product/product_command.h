#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool product PRODUCT [DIR]`, which lists the images of a product and makes rasters and
/// pools of one.
void AddProductCommand(CLI::App& app);
