#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool pool list|get|set|check FILE`, which shows and changes parameter pools.
void AddPoolCommand(CLI::App& app);
