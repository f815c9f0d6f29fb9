#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>

/// Files that a process makes for itself for a while. Each is locked as long as it is open, and has
/// a mark, by which later processes recognise those that a killed one has left. Functions that tell
/// whether they worked leave the reason of a failure in `errno`.

/// Creates a file of a unique name, for the user alone, and opens it for reading and writing with
/// these flags besides; -1 when that fails. `name` ends with "XXXXXX", which becomes the file's
/// own.
int CreateTemporaryFile(char* name, int flags) noexcept;
/// It is to stay: no process takes it for a left-over one.
void KeepTemporaryFile(int descriptor) noexcept;
/// Whether `CreateTemporaryFile` made this file, and the process that did has gone or given it up.
/// Where the file system has no locks no file is.
bool IsLeftOver(int descriptor) noexcept;

/// Runs the body with the path of each left-over file in a directory whose name is this prefix and
/// six characters, and with a descriptor for reading it. Whatever fails on the way is passed over
/// in silence.
void ForEachLeftOver(
    const std::string& directory, std::string_view prefix,
    const std::function<void(const std::string& path, int descriptor)>& body) noexcept;
