#pragma once

#include <string>
#include <vector>

#include "pools/pool_listing.h"

/// What keeps a run of `resample` from using a pool, a line of text each: entries that it lacks or
/// has with another type, and values that the run would refuse. `listing` is that of the file at
/// `path`; `is_slave_pool` tells which of the run's pools it is to be.
std::vector<std::string> FaultsForResample(const std::string& path, const POOL_LISTING& listing,
                                           bool is_slave_pool);

/// Whether the pool holds anything that is asked of a slave pool.
bool LooksLikeSlavePool(const POOL_LISTING& listing);
