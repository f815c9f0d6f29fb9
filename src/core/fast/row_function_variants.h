#pragma once

#include "core/fast/row_functions.h"

/// The same functions for processors of the levels x86-64, x86-64-v3 (AVX2, FMA) and x86-64-v4
/// (AVX-512), or of aarch64. There are those of the kind that is built for. Calling one that the
/// processor does not offer ends the program.
extern const ROW_FUNCTIONS row_functions_x86_64;
extern const ROW_FUNCTIONS row_functions_x86_64_v3;
extern const ROW_FUNCTIONS row_functions_x86_64_v4;
extern const ROW_FUNCTIONS row_functions_aarch64;
