#pragma once

/// Real and imaginary part as two consecutive values, so that an array of them is an interleaved
/// block of pairs.
template <class T>
struct COMPLEX {
  T re{};
  T im{};
};
