#pragma once

#include <string>
#include <vector>

#include "pools/pool_listing.h"

/// The entries that a run of `resample` asks a pool for, as far as the pool lacks them or has them
/// with another type: a line of text each. `is_slave_pool` tells which of its pools it is to be.
std::vector<std::string> MissingForResample(const POOL_LISTING& listing, bool is_slave_pool);

/// Whether the pool holds anything that is asked of a slave pool.
bool LooksLikeSlavePool(const POOL_LISTING& listing);
