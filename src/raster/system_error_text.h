#pragma once

#include <string>

/// The log's line for an `errno` of `open`.
std::string OpenErrorText(int error);

/// The log's line for an `errno` of `msync`.
const char* SyncErrorText(int error) noexcept;
