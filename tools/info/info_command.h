#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool info RASTER`, which tells what a raster file holds.
void AddInfoCommand(CLI::App& app);
