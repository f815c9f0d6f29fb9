#pragma once

#include <filesystem>
#include <string>

/// Whether a directory is that of a stack that was started.
bool IsStackDirectory(const std::filesystem::path& directory);

/// An HTML page of how a stack stands: its counts and a row for each slave, with those first that
/// need somebody. Throws std::exception when the stack's files cannot be read.
std::string MakeStackPage(const std::filesystem::path& directory);
