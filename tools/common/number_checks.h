#pragma once

#include <CLI/CLI.hpp>

/// Checks of options. Those of the library show the largest double, all its digits, in what they
/// tell, and let NaN pass. Numbers have to be finite.
extern const CLI::Validator positive_number;
extern const CLI::Validator non_negative_number;
