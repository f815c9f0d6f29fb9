#pragma once

#include <cstddef>
#include <string_view>

/// Writes all bytes at the position of an open file, going on after interruptions and short writes.
/// A pipe that does not block is waited for as long as its reader takes something within 5 seconds;
/// then it fails with ETIMEDOUT. A pipe without a reader raises SIGPIPE. Returns how many bytes
/// were written; when these are not all, `errno` says why.
std::size_t WriteWhole(int file, std::string_view bytes) noexcept;
