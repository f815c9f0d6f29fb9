#pragma once

/// Whether both paths name one existing file, directly or through hard or symbolic links.
bool IsSameFile(const char* a, const char* b) noexcept;
