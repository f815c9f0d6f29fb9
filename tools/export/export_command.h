#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool export FILE OUT`, which writes a raster as a GeoTIFF or any other GDAL format.
void AddExportCommand(CLI::App& app);
