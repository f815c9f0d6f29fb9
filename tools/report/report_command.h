#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool report DIRECTORY`, which makes a page that tells how a run went.
void AddReportCommand(CLI::App& app);
