#pragma once

#include <CLI/CLI.hpp>

/// Adds `slctool check-run ARGUMENTS...`, which tells what a run of resample with these arguments
/// would find wrong and what it will need, and writes nothing. Throws CLI::RuntimeError, after the
/// report, when the run would fail.
void AddCheckRunCommand(CLI::App& app);
