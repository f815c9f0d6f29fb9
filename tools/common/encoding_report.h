#pragma once

#include <cstdint>

#include "common/pixel_encoder.h"

/// Prints by what numbers were multiplied and what became of them as pixels, and warns on standard
/// error where more than one in a hundred of all `n_numbers` was clipped or became 0.
void PrintEncoding(double scale, const ENCODING_COUNTS& counts, std::int64_t n_numbers);
