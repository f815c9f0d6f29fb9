#pragma once

#include <span>
#include <vector>

#include "base/array.h"
#include "base/matrix.h"

// Numbers as pools take them, from index 0 on. Both throw std::bad_alloc.

ARRAY<double> VectorOf(std::span<const double> values);
/// All rows have the same length.
MATRIX<double> MatrixOf(const std::vector<std::vector<double>>& rows);
