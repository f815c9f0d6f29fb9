#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool png KIND RASTER... PICTURE`, which draws rasters as PNG pictures.
void AddPngCommand(CLI::App& app);
