#pragma once

#include "pool/pool_file.h"

/// Updates that were killed leave `POOL_FILE::CreateTemporary`'s files beside their pools. These
/// are told and never removed: one may be all that is left of a pool. Whatever fails on the way is
/// passed over in silence.

/// Names the copies that may hold what an empty pool held, and those of which a pool holds only the
/// beginning, each in a line at WARNING.
void TellCopiesOfCutPool(const POOL_FILE& pool) noexcept;

/// Names all left-over files in the directory of a pool, each in a line at WARNING.
void TellLeftOverFiles(const POOL_FILE& pool) noexcept;
