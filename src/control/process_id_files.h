#pragma once

inline constexpr const char* current_process_file = "current_process.pid";
inline constexpr const char* parent_process_file = "parent_process.pid";

/// Leaves the identifiers of the process and of its parent in "current_process.pid" and
/// "parent_process.pid" in the current directory. A failure is only logged.
void WriteProcessIdFiles();
