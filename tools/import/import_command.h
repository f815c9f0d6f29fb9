#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool import SRC DST`, which makes a raster of anything that GDAL reads.
void AddImportCommand(CLI::App& app);
