#pragma once

#include "base/array.h"
#include "base/range.h"

/// Splits a range into at most `wanted` contiguous blocks whose counts differ by one at most,
/// the larger ones first, and never more blocks than elements. Returns the number of blocks.
/// Throws the text "out of memory", and ERROR_ARGUMENT for an empty range or no block wanted.
int SplitRange(const URANGE<unsigned int>& range, int wanted,
               ARRAY<URANGE<unsigned int>>& sub_ranges);
