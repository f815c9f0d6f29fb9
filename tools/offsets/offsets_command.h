#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool offsets RANGE AZIMUTH`, which makes a mapping of dense offsets.
void AddOffsetsCommand(CLI::App& app);
