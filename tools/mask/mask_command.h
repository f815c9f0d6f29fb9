#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool mask OUT FILE...`, which makes a mask of the values of rasters, or of other masks.
void AddMaskCommand(CLI::App& app);
