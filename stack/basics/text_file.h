#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// The whole content; nothing when the file cannot be read.
std::optional<std::string> ReadTextFile(const std::filesystem::path& path);

/// The last `length` bytes or less; empty when the file cannot be read.
std::string ReadEndOfFile(const std::filesystem::path& path, std::size_t length);

/// Replaces the file in one step, so that who reads it meanwhile gets the old text or the new one.
/// Throws std::system_error.
void ReplaceTextFile(const std::filesystem::path& path, std::string_view text);
