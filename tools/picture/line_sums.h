#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "common/pair_sums.h"
#include "common/raster_reader.h"

/// Delivers the sums of every single pixel of one line of an image. It refers to its rasters.
using LINE_SUMS = std::function<void(std::int64_t line, std::span<PAIR_SUMS> pixels)>;

/// Pixels paired with 1: `power_a` tells their power, `cross` their sum.
LINE_SUMS SumsOf(const RASTER_READER& image);
/// The pairs of two rasters of one size.
LINE_SUMS SumsOf(const RASTER_READER& a, const RASTER_READER& b);
/// The real parts of pixels as `cross`, 0 among them; those that are not finite have no weight.
LINE_SUMS ValuesOf(const RASTER_READER& image);
/// The pixels of a mask that are not valid, those of value 0, each with weight 1; others have none.
LINE_SUMS GapsOf(const RASTER_READER& mask);
