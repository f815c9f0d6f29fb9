#pragma once

#include <string>

/// Which of a run's pools is meant.
enum class POOL_ROLE { INSAR, SLAVE };

/// The text of a pool with all entries that a run of `resample` reads, each with its meaning and
/// unit in a comment. What only the user knows stands there as a value that a run refuses.
std::string PoolTemplate(POOL_ROLE role);
