#pragma once

#include <istream>

/// One number for range and one for azimuth. On a command line they are given as "R,A", or as one
/// number that counts for both.
template <class T>
struct RANGE_AZIMUTH {
  T range{};
  T azimuth{};

  RANGE_AZIMUTH() = default;
  RANGE_AZIMUTH(T in_range, T in_azimuth) : range(in_range), azimuth(in_azimuth) {}

  friend std::istream& operator>>(std::istream& stream, RANGE_AZIMUTH& pair) {
    if (stream >> pair.range) {
      pair.azimuth = pair.range;
      if (!stream.eof() && stream.peek() == ',') {
        stream.ignore();
        stream >> pair.azimuth;
      }
    }
    return stream;
  }

  friend std::ostream& operator<<(std::ostream& stream, const RANGE_AZIMUTH& pair) {
    return stream << pair.range << "," << pair.azimuth;
  }
};
