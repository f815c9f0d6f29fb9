#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool interferogram MASTER RESAMPLED OUT`, which makes interferogram, coherence and
/// amplitudes.
void AddInterferogramCommand(CLI::App& app);
