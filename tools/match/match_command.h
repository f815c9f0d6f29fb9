#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool match MASTER SLAVE`, which measures the shifts between two complex rasters.
void AddMatchCommand(CLI::App& app);
