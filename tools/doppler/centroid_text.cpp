#include "doppler/centroid_text.h"

#include <cmath>
#include <iomanip>
#include <limits>
#include <string>

namespace {

/// Points that know their centroid less exactly are not shown.
constexpr double largest_deviation = 0.1;

bool IsShown(const CENTROID_POINT& point) {
  return point.rest.Deviation() < largest_deviation;
}

void WriteTable(const std::vector<CENTROID_POINT>& points, const char* axis, double prf,
                std::ostream& out) {
  const bool is_annotated = prf > 0.0;
  const double unit = is_annotated ? prf : 1.0;
  const int digits = is_annotated ? 1 : 4;
  out << std::setw(9) << axis << std::setw(12) << "data" << std::setw(9) << "+-";
  if (is_annotated) {
    out << std::setw(12) << "annotation" << std::setw(12) << "difference";
  }
  out << "\n";
  for (const CENTROID_POINT& point : points) {
    out << std::fixed << std::setprecision(0) << std::setw(9) << point.position
        << std::setprecision(digits);
    if (IsShown(point)) {
      out << std::setw(12) << point.Measured() * unit << std::setw(9)
          << point.rest.Deviation() * unit;
    } else {
      out << std::setw(12) << "-" << std::setw(9) << "-";
    }
    if (is_annotated) {
      out << std::setw(12) << point.annotated * unit << std::setw(12);
      if (IsShown(point)) {
        out << point.rest.Turns() * unit;
      } else {
        out << "-";
      }
    }
    out << "\n";
  }
  out << "\n";
}

}  // namespace

void WriteCentroid(const IMAGE_CENTROID& centroid, double prf, std::ostream& out) {
  const LAG_ONE& rest = centroid.rest;
  out << "Doppler centroid [" << (prf > 0.0 ? "Hz" : "PRF") << "]\n\n";
  WriteTable(centroid.along_range, "sample", prf, out);
  WriteTable(centroid.along_azimuth, "line", prf, out);
  if (!centroid.IsMeasured()) {
    out << "The data tell no centroid: neighbouring lines are too little alike.\n";
    return;
  }
  out << std::fixed << std::setprecision(4)
      << (prf > 0.0 ? "data less annotation: " : "centroid of the data: ") << rest.Turns()
      << " PRF";
  if (prf > 0.0) {
    out << " (" << std::setprecision(1) << rest.Turns() * prf << " Hz)";
  }
  out << ", known to whole PRFs\n"
      << std::setprecision(4) << "coherence of neighbouring lines: " << rest.Coherence()
      << ", that of a flat spectrum over " << std::setprecision(2) << rest.Bandwidth()
      << " of the line rate\n";
}

PLOT CentroidPlot(const std::vector<CENTROID_POINT>& points, const char* axis, double prf) {
  const bool is_annotated = prf > 0.0;
  const double unit = is_annotated ? prf : 1.0;
  PLOT_SERIES data{.name = "data",
                   .style = PLOT_SERIES::STYLE::POINTS,
                   .colour = {190, 40, 40},
                   .x = {},
                   .y = {}};
  PLOT_SERIES annotation{.name = "annotation",
                         .style = PLOT_SERIES::STYLE::LINE,
                         .colour = {40, 80, 170},
                         .x = {},
                         .y = {}};
  for (const CENTROID_POINT& point : points) {
    data.x.push_back(point.position);
    data.y.push_back(IsShown(point) ? point.Measured() * unit
                                    : std::numeric_limits<double>::quiet_NaN());
    annotation.x.push_back(point.position);
    annotation.y.push_back(point.annotated * unit);
  }
  PLOT plot;
  plot.title =
      std::string("Doppler centroid along ") + (axis == std::string("line") ? "azimuth" : "range");
  plot.x_name = axis;
  plot.y_name = is_annotated ? "centroid [Hz]" : "centroid [PRF]";
  if (is_annotated) {
    plot.series.push_back(std::move(annotation));
  }
  plot.series.push_back(std::move(data));
  return plot;
}
