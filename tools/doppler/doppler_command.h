#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool doppler SLAVE`, which measures the Doppler centroid of an image and shows it
/// beside the annotated one.
void AddDopplerCommand(CLI::App& app);
