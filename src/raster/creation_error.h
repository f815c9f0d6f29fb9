#pragma once

/// The errno with which creating a regular file of this name, or emptying the one that is there,
/// would end, 0 when it would succeed. Nothing is created or changed.
int CreationError(const char* path);
