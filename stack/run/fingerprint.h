#pragma once

#include <string>

#include "run/slave_plan.h"

/// A JSON text of all that decides about a run's result: version and build of the program,
/// parameters, and for each input what tells whether it has changed, its size and time of
/// modification, or for a pool its text without the entries that runs themselves write there. Paths
/// below the description's folder count from there, so that a stack may move together with its
/// data.
std::string Fingerprint(const SLAVE_PLAN& plan);

/// Which parameter or input makes one fingerprint another; empty when both are the same.
std::string DifferenceOf(const std::string& fingerprint, const std::string& other);
