#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

#include "core/fast/row_functions.h"
#include "core/fast/rows/lanes.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

// Positions. The order of operations is that of the mappings, so the results are the same bits.

void MatrixPositions(const MATRIX_COLUMNS& columns, double line, double line_fraction, int count,
                     double* __restrict rg, double* __restrict az) {
  const double before = 1.0 - line_fraction;
  for (int x = 0; x < count; ++x) {
    rg[x] =
        columns.sample[x] + (before * columns.rg_before[x] + columns.rg_after[x] * line_fraction);
    az[x] = line + (before * columns.az_before[x] + columns.az_after[x] * line_fraction);
  }
}

void PolynomialPositions(const POLYNOMIAL_COLUMNS& columns, const POLYNOMIAL_LINE& terms,
                         double line, const double* origin, int count,
                         double* __restrict position) {
  for (int x = 0; x < count; ++x) {
    position[x] = terms.c0_c1_y + columns.c2_x[x] + columns.c3_x[x] * line + terms.c4_y_y +
                  columns.c5_x_x[x] + origin[x];
  }
}

}  // namespace
