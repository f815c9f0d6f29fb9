#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool vrt FILE`, which lets GDAL open a raster where it lies.
void AddVrtCommand(CLI::App& app);
