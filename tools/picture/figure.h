#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "picture/canvas.h"
#include "picture/colour.h"
#include "picture/grid.h"
#include "picture/ticks.h"

/// How values become colours, and what the colour bar says about it. Values outside take the
/// colour of the nearer end.
struct COLOUR_SCALE {
  double low;
  double high;
  COLOUR_RAMP map;
  std::string name;  ///< of the value, with its unit
  std::vector<TICK> ticks;
};

/// An image of values with its axes and its colour bar.
struct FIGURE {
  std::string title;  ///< without one no room is left for it and the subtitle
  std::string subtitle;
  CELL_GRID<double> values;  ///< one a cell, NaN where there is none
  std::int64_t samples;      ///< what the columns of the grid stand for
  std::int64_t lines;        ///< what the rows of the grid stand for
  int width;                 ///< of the image itself, in picture pixels
  int height;
  COLOUR_SCALE scale;
};

CANVAS Draw(const FIGURE& figure);
