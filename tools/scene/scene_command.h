#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool scene DIR`, which makes a synthetic pair with a known answer.
void AddSceneCommand(CLI::App& app);
