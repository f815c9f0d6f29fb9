#pragma once

#include <string>

/// The directory that holds the file of this path: "." for a name alone, "/" for "/name".
std::string DirectoryOf(const std::string& path);
