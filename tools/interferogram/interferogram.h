#pragma once

#include <functional>
#include <string>

#include "common/pair_lines.h"
#include "common/range_azimuth.h"

/// The rasters of an interferogram, as paths.
struct INTERFEROGRAM_PATHS {
  std::string interferogram;     ///< complex: mean of a conj(b)
  std::string coherence;         ///< |sum of a conj(b)| / sqrt(sum of |a|^2 sum of |b|^2)
  std::string first_amplitude;   ///< sqrt(mean of |a|^2)
  std::string second_amplitude;  ///< sqrt(mean of |b|^2)
};

/// Makes the interferogram of two images and all that goes with it, a pixel for each whole cell of
/// `looks` samples and lines: what is left at the right and lower edge is dropped. Pixels count
/// that PAIR_LINES lets through; a cell without any is 0 in all rasters. No image is ever held in
/// memory. `progress` is called with the finished part, 0 to 1, by one thread at a time.
///
/// Throws std::invalid_argument when there is no whole cell, and the errors of RASTER_WRITER.
void MakeInterferogram(const PAIR_LINES& pair, const RANGE_AZIMUTH<int>& looks,
                       const INTERFEROGRAM_PATHS& paths,
                       const std::function<void(double)>& progress);
