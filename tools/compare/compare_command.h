#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool compare A B`, which measures how well two rasters fit.
void AddCompareCommand(CLI::App& app);
