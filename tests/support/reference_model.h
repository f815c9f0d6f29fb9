#pragma once

#include <cstdint>
#include <string>

#include "support/grid.h"
#include "support/scene.h"

/// One output pixel as the formulas give it, before encoding.
struct MODEL_PIXEL {
  bool computed = false;
  std::uint8_t valid = 0;
  long double re = 0.0L;
  long double im = 0.0L;
  /// Sum over the footprint of |weight| (|re| + |im|): what rounding errors grow with.
  long double magnitude = 0.0L;
};

/// The whole computation, evaluated for one pixel after the other as directly as the formulas
/// can be written down. Positions, times, phases and weights are in double precision, in their
/// prescribed order; sums over the footprint are in extended precision. Shares no code with the
/// program.
GRID<MODEL_PIXEL> ResampleByModel(const SCENE& scene);

/// How an output of the program compares with the model.
struct MODEL_COMPARISON {
  int computed_pixels = 0;
  int valid_pixels = 0;
  /// Components so close to a rounding tie that both neighbours are right.
  int ties = 0;
  /// The first pixel that differs, in words; empty when all agree.
  std::string difference;
};

/// Compares every component and every mask byte. Pixels that are not computed must be 0.
MODEL_COMPARISON CompareWithModel(const SCENE& scene, const GRID<RAW_PIXEL>& image,
                                  const GRID<std::uint8_t>& mask);
