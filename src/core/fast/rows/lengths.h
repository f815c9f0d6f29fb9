#pragma once

// Part of the row functions, compiled once for every level of the processor: see lanes.h.

namespace {  // NOLINT(cert-dcl59-cpp): see lanes.h

/// A length that the compiler knows, so that it can unroll; 0 stands for any.
template <int N>
struct TAPS {
  static constexpr int count = N;
};

template <class CHOOSE>
auto ForLength(int length, CHOOSE choose) {
  switch (length) {
    case 6:
      return choose(TAPS<6>());
    case 8:
      return choose(TAPS<8>());
    case 12:
      return choose(TAPS<12>());
    case 16:
      return choose(TAPS<16>());
    default:
      return choose(TAPS<0>());
  }
}

}  // namespace
