#pragma once

// The row functions, compiled once for every level of the processor: see lanes.h.
//
// Loops over columns are plain where the compiler makes vectors of them. The others name the vector
// type themselves, because the compiler does not see through their inner loops over taps.

#include "core/fast/rows/azimuth_filter.h"
#include "core/fast/rows/masks.h"
#include "core/fast/rows/phases.h"
#include "core/fast/rows/pixels.h"
#include "core/fast/rows/positions.h"
#include "core/fast/rows/prefetch.h"
#include "core/fast/rows/range_filter.h"
#include "core/fast/rows/taps.h"
#include "core/fast/rows/transpose.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

template <class PIXEL>
constexpr PIXEL_FUNCTIONS<PIXEL> functions_of_pixels = {
    .decode = DecodeRow,
    .footprint_filter =
        [](int length) {
          return ForLength(length, [](auto taps) -> FOOTPRINT_FILTER<PIXEL> {
            return FilterFootprint<PIXEL, taps.count>;
          });
        },
    .encode = EncodeRow};

template <class... CODECS>
constexpr FUNCTIONS_OF_ALL_PIXELS<PIXEL_CODECS> FunctionsOfPixels(CODEC_LIST<CODECS...>) {
  return {functions_of_pixels<typename CODECS::PIXEL>...};
}

constexpr ROW_FUNCTIONS all_row_functions = {
    .matrix_positions = MatrixPositions,
    .polynomial_positions = PolynomialPositions,
    .locate_taps = LocateTaps,
    .transpose_rows = TransposeRows,
    .range_times = RangeTimes,
    .centroid = Centroid,
    .ramp_turns = RampTurns,
    .rate_turns = RateTurns,
    .sine_cosine = SineCosine,
    .close_sine_cosine = CloseSineCosine,
    .range_filter =
        [](int length) {
          return ForLength(length,
                           [](auto taps) -> RANGE_FILTER { return FilterRange<taps.count>; });
        },
    .group_filter =
        [](int length) {
          return ForLength(length,
                           [](auto taps) -> GROUP_FILTER { return FilterGroup<taps.count>; });
        },
    .azimuth_filter =
        [](int length) {
          return ForLength(length,
                           [](auto taps) -> AZIMUTH_FILTER { return FilterAzimuth<taps.count>; });
        },
    .rate_azimuth_filter =
        [](int length) {
          return ForLength(length, [](auto taps) -> RATE_AZIMUTH_FILTER {
            return FilterAzimuthWithRate<taps.count>;
          });
        },
    .filter_mask = FilterMask,
    .combine_masks = CombineMasks,
    .prefetch_written = PrefetchWritten,
    .pixels = FunctionsOfPixels(PIXEL_CODECS()),
};

}  // namespace
