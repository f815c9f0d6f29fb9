#pragma once

#include <string>

#include "interpolation/interpolation_kernel.h"

/// What too few sub-pixel positions cost, for the person who chose them; empty for enough.
std::string CostOfSubpixelPositions(const INTERPOLATION_KERNEL& kernel);
