#pragma once

#include <cstdint>

#include "common/pair_sums.h"
#include "picture/grid.h"
#include "picture/line_sums.h"

/// Sums up the pixels of each cell of a grid that divides an image of samples x lines into boxes
/// of equal size. A pixel on the border of two boxes belongs to both in proportion, so that all
/// boxes hold the same number of looks. The lines are asked for once each, in order, and nothing
/// but the line in work and the grid is kept.
///
/// The grid may have at most one column a sample and one row a line.
CELL_GRID<PAIR_SUMS> Multilook(const LINE_SUMS& line_sums, std::int64_t samples, std::int64_t lines,
                               int columns, int rows);
