#pragma once

#include <nlohmann/json.hpp>

#include "run/slave_plan.h"

/// All that decides about a run's result: version, parameters, and for each input what tells
/// whether it has changed, its size and time of modification, or for a pool its text without the
/// entries that runs themselves write there.
nlohmann::json Fingerprint(const SLAVE_PLAN& plan);
