#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool pool new|list|get|set|check FILE`, which makes, shows and changes parameter pools.
void AddPoolCommand(CLI::App& app);
