#pragma once

#include <CLI/CLI.hpp>
#include <optional>

/// Adds the option --scale, a positive number or "auto", which leaves `scale` without a value.
CLI::Option* AddScaleOption(CLI::App& command, std::optional<double>& scale);
