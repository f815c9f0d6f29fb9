#pragma once

/// Leaves the identifiers of the process and of its parent in "current_process.pid" and
/// "parent_process.pid" in the current directory. A failure is only logged.
void WriteProcessIdFiles();
