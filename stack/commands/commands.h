#pragma once

#include <CLI/CLI.hpp>

/// Each gives the program one of its uses. What goes wrong is thrown; CLI::RuntimeError carries an
/// exit status.

/// The start of a stack, which is what the program does without a subcommand.
void AddStart(CLI::App& app);
void AddRetryCommand(CLI::App& app);
void AddStopCommand(CLI::App& app);
void AddCleanCommand(CLI::App& app);
void AddStatusCommand(CLI::App& app);
/// One slave's run, for the queues.
void AddRunCommand(CLI::App& app);
