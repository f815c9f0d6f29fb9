#pragma once

#include <string>
#include <vector>

#include "picture/canvas.h"

/// Points of a plot, drawn in one way. A point whose x or y is no number leaves a gap.
struct PLOT_SERIES {
  enum class STYLE { LINE, POINTS, BARS };

  std::string name;  ///< for the legend; none without it
  STYLE style = STYLE::LINE;
  COLOUR colour;
  std::vector<double> x;  ///< of BARS: their middles, equally far from each other
  std::vector<double> y;
};

/// Values over one coordinate, with axes and a legend.
struct PLOT {
  std::string title;
  std::string x_name;
  std::string y_name;
  std::vector<PLOT_SERIES> series;
  int width = 420;  ///< of the area between the axes, in picture pixels
  int height = 240;
};

CANVAS Draw(const PLOT& plot);
