#include "core/fast/row_function_variants.h"
#include "core/fast/rows/all.h"

const ROW_FUNCTIONS row_functions_aarch64 = all_row_functions;
