#pragma once

#include <filesystem>

#include "description/described_stack.h"

/// Reads a description: a JSON object with "slaves", a list of objects that each have a "name" and
/// parameters of resample, and optionally "name" (else the file's name without its ending),
/// "directory" (else the file's path with the ending ".stack"), and "common", an object with the
/// parameters of all slaves. A slave's own parameter goes before the common one, "{name}" in a
/// value stands for the slave's name, and relative paths begin at the description's directory.
///
/// Throws STACK_ERROR with a line for everything that is wrong: unknown or missing parameters,
/// values that a configuration file cannot hold, names given twice, and outputs that would
/// overwrite an input, the output of another run, the description or a file of the stack's own.
STACK_DESCRIPTION ReadStackDescription(const std::filesystem::path& file);
