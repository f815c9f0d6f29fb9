#pragma once

#include <ostream>

#include "check_run/image_centroid.h"
#include "picture/plot.h"

/// Tables of the centroid along range and azimuth, and what they come to. `prf` [Hz] is 0 where
/// there is no annotation.
void WriteCentroid(const IMAGE_CENTROID& centroid, double prf, std::ostream& out);

/// The points of one axis, the data with the annotation if `prf` is not 0.
PLOT CentroidPlot(const std::vector<CENTROID_POINT>& points, const char* axis, double prf);
