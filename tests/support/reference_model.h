#pragma once

#include <cstdint>
#include <string>

#include "support/grid.h"
#include "support/scene.h"

/// How an output of the program compares with the model.
struct MODEL_COMPARISON {
  int computed_pixels = 0;
  int valid_pixels = 0;
  /// The first pixel that differs, in words; empty when all agree.
  std::string difference;
};

/// Compares every component and every mask byte of an output, which must have the size of the
/// grid, with the whole computation, evaluated for one pixel after the other as directly as the
/// formulas can be written down. Positions, times, phases and weights are in double precision, in
/// their prescribed order; sums over the footprint are in extended precision. Shares no code with
/// the program. Pixels that are not computed must be 0.
MODEL_COMPARISON CompareWithModel(const SCENE& scene, const GRID<RAW_PIXEL>& image,
                                  const GRID<std::uint8_t>& mask);
