#pragma once

#include "pool/parameter_pool_list.h"
#include "pool/pool_file.h"

/// Opens the pool file of this path for an update. Failure: ALARM line and
/// NO_UPDATE_PERMISSION_FOR_POOL.
POOL_FILE OpenPoolForUpdate(const char* path);

/// Merges the items into a pool file that is open for an update. The caller holds the exclusive
/// lock on it, so that updates of other objects and programs come one after the other, and each
/// merges into what the one before wrote.
///
/// The merged pool is first written to a temporary file beside the pool and flushed to the disk;
/// until then the pool is untouched. Then the pool is overwritten in place, which keeps its owner,
/// permissions and identity, flushed too, and the temporary file removed. Signals that end the
/// process wait from the first to the last of these steps.
///
/// Any exception means that the pool was not updated. Failures are ALARM lines and, for a temporary
/// file that cannot be created, NO_UPDATE_PERMISSION_FOR_POOL; for one that cannot be completed,
/// CORRUPTED_PARAMETER_POOL with the pool unchanged; for a pool that cannot be overwritten,
/// ERROR_PARAMETER_POOL. In the last case the pool gets its former content back. Where even that
/// fails the lines name the temporary file, which stays and holds the whole updated pool.
void UpdatePoolFile(POOL_FILE& pool, const PARAMETER_POOL_LIST& items);

/// Throws NO_UPDATE_PERMISSION_FOR_POOL, after its ALARM lines, when an update of this pool could
/// not open it or create its temporary file. Nothing is written.
void CheckPoolUpdate(const char* path);
