#pragma once

#include <CLI/CLI.hpp>
#include <optional>

/// Add the option --scale, a positive number, or also "auto", which leaves `scale` without a value.
CLI::Option* AddScaleOption(CLI::App& command, double& scale);
CLI::Option* AddScaleOption(CLI::App& command, std::optional<double>& scale);
