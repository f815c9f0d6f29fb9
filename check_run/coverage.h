#pragma once

#include <cstdint>

#include "core/footprint.h"
#include "mapping/mapping_base.h"

/// The output of a run and what it is computed from.
struct COVERAGE_JOB {
  const MAPPING_BASE* mapping;
  FOOTPRINT footprint;  ///< of the kernel
  int slave_width;
  int slave_height;
  int n_samples;  ///< of the output
  int n_lines;
};

/// How many of the output pixels that were looked at will be computed.
struct COVERAGE {
  std::int64_t looked_at = 0;
  std::int64_t computed = 0;
  int step = 1;  ///< every so many samples and lines were looked at

  double Share() const noexcept {
    return static_cast<double>(computed) / static_cast<double>(looked_at);
  }
};

/// Asks the mapping where the output pixels lie in the slave, all of them or, when there are more
/// than `most_pixels`, a regular grid of about so many.
COVERAGE MeasureCoverage(const COVERAGE_JOB& job, std::int64_t most_pixels);
