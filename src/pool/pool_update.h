#pragma once

#include "pool/parameter_pool_list.h"
#include "pool/pool_file.h"

/// Merges the items into the pool file of this path and returns the file, open for reading and
/// writing. All the time an exclusive advisory lock is held on the file, so that updates of other
/// objects and programs come one after the other, and each merges into what the one before wrote.
///
/// The merged pool is first written to a temporary file beside the pool and flushed to the disk;
/// until then the pool is untouched. Then the pool is overwritten in place, which keeps its owner,
/// permissions and identity, flushed too, and the temporary file removed. Signals that end the
/// process wait from the first to the last of these steps.
///
/// Failures are ALARM lines and, for a file that cannot be opened or created,
/// NO_UPDATE_PERMISSION_FOR_POOL; for a temporary file that cannot be completed,
/// CORRUPTED_PARAMETER_POOL with the pool unchanged; for a pool that cannot be overwritten,
/// ERROR_PARAMETER_POOL. In the last case the lines name the temporary file, which stays and holds
/// the whole pool.
POOL_FILE UpdatePoolFile(const char* path, const PARAMETER_POOL_LIST& items);

/// Throws NO_UPDATE_PERMISSION_FOR_POOL, after its ALARM lines, when an update of this pool could
/// not open it or create its temporary file. Nothing is written.
void CheckPoolUpdate(const char* path);
