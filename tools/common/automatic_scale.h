#pragma once

#include <vector>

#include "raster/pixel_type.h"

/// Chooses a factor for numbers that become pixels of a type, of a sample of them: the power of two
/// that brings the 99.9th percentile of the magnitudes to between an eighth and a quarter of the
/// type's range, to about 1000 in binary16 (which holds 6e-5 to 65504), and 1 in types of float. A
/// power of two keeps the digits of floating point numbers. Zeros and what is no number do not
/// count; 1 where nothing else is there. The order of the numbers changes.
double AutomaticScale(PIXEL_TYPE type, std::vector<double>& numbers);
