#pragma once

#include <cstdint>
#include <string>

#include "common/range_azimuth.h"
#include "core/resample_input.h"

/// How far shifts are from what describes them [samples or lines].
struct DEPARTURE {
  std::int64_t points = 0;
  double rms = 0.0;
  double largest = 0.0;
};

/// Of the mapping's shifts, on a grid over the output, from polynomials of the second degree:
/// hills, and what a mapping has of noise and blunders. Throws std::runtime_error for an output
/// that is too small for one.
RANGE_AZIMUTH<DEPARTURE> DepartureFromPolynomials(const RESAMPLE_INPUT& input);

/// Of the shifts in PREFIX_range.ras and PREFIX_azimuth.ras of `match` from the mapping; weak ones
/// and those beyond the mapping are left out. Throws the errors of `RASTER_OFFSETS`.
RANGE_AZIMUTH<DEPARTURE> DepartureFromMapping(const std::string& prefix,
                                              const MAPPING_BASE& mapping);
