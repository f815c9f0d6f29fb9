#pragma once

#include <filesystem>
#include <string>

/// Whether both paths name one existing file, directly or through hard or symbolic links.
bool IsSameFile(const char* a, const char* b) noexcept;

/// Whether both paths name one file, whether it exists already or not. Links that lead to no file
/// so far are followed to where a new one would stand.
bool IsSamePath(const std::string& a, const std::string& b);

/// The file that a new one of this name would be: symbolic links may lead to none so far.
std::filesystem::path BehindLinks(std::filesystem::path path);

/// Whether opening `path` leads to or through the directory entry `entry`, which is not followed
/// if it is a link.
bool LeadsThrough(std::filesystem::path path, const std::filesystem::path& entry);
