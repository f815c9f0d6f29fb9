#pragma once

/// Leaves a file that holds the number as decimal text without line end, mode 0666 less the
/// umask. False when the file cannot be created or written.
///
/// Async-signal-safe. A file that exists is overwritten in place and never empty in between,
/// so that renewing a marker needs no space on a full disk. A link, symbolic or hard, is replaced:
/// what it leads to is another's file.
bool WriteNumberFile(const char* path, int number) noexcept;
