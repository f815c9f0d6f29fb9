#pragma once

#include <string>
#include <vector>

#include "report/quicklooks.h"
#include "report/run_record.h"

/// A figure of the page, or the reason why it could not be measured.
struct QUALITY_FIGURE {
  std::string name;
  std::string value;  ///< with its unit; empty when there is none
  std::string reason;
};

/// How good the output of a run is, and from what it was made.
struct QUALITY {
  std::vector<QUALITY_FIGURE> figures;
  std::vector<QUICKLOOK> histograms;
  /// Neither as a whole nor in boxes, within which fringes stay apart, is the output coherent with
  /// the master. False without a master.
  bool misfits = false;
};

/// Measures coherence and phase with the master, whose name may be empty, the share of valid pixels
/// and of saturated components, the annotated centroid and the shifts. Throws nothing of a raster
/// or a pool that cannot be read.
QUALITY MeasureQuality(const RUN_RECORD& run, const std::string& master);
