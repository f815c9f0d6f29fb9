#pragma once

#include <string>

#include "run/slave_plan.h"

/// A JSON text of all that decides about a run's result: version, parameters, and for each input
/// what tells whether it has changed, its size and time of modification, or for a pool its text
/// without the entries that runs themselves write there.
std::string Fingerprint(const SLAVE_PLAN& plan);
