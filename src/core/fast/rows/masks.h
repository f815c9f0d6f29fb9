#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

#include "core/fast/row_functions.h"
#include "core/fast/rows/lanes.h"

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

void FilterMask(const unsigned char* __restrict mask, int length, int count,
                unsigned char* __restrict valid) {
  for (int x = 0; x < count; ++x) {
    valid[x] = 1;
  }
  for (int j = 0; j < length; ++j) {
    for (int x = 0; x < count; ++x) {
      valid[x] &= static_cast<unsigned char>(mask[x + j] != 0);
    }
  }
}

void CombineMasks(const RING_LINES<unsigned char>& masks, int length, int count,
                  unsigned char* __restrict valid) {
  for (int x = 0; x < count; ++x) {
    valid[x] = 1;
  }
  for (int k = 0; k < length; ++k) {
    const unsigned char* mask = masks.Line(k);
    for (int x = 0; x < count; ++x) {
      valid[x] &= mask[x];
    }
  }
}

}  // namespace
