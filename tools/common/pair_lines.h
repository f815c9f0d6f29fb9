#pragma once

#include <complex>
#include <cstdint>
#include <span>
#include <vector>

#include "common/pair_sums.h"
#include "common/raster_reader.h"

/// Lines of two rasters of one size, and of masks over them. Any number of threads may read.
class PAIR_LINES {
 public:
  using VALUE = std::complex<double>;

  /// Refers to the rasters. Throws std::invalid_argument for different sizes.
  PAIR_LINES(const RASTER_READER& a, const RASTER_READER& b,
             std::vector<const RASTER_READER*> masks);

  std::int64_t Width() const noexcept { return a_.Width(); }
  std::int64_t Height() const noexcept { return a_.Height(); }

  /// Pixels of a line. Both values are 0 where one of them is 0 or not finite, or a mask is 0.
  struct LINE {
    std::vector<VALUE> a;
    std::vector<VALUE> b;
    std::vector<VALUE> mask;
  };
  /// So many pixels at a time stay in the nearest cache between the passes over them.
  static constexpr std::int64_t handy_count = 512;
  /// Reads as many pixels as asked for, from `first` on. Throws as RASTER_READER::ReadLine does.
  void Read(std::int64_t line, std::int64_t first, std::int64_t count, LINE& pixels) const;

 private:
  const RASTER_READER& a_;
  const RASTER_READER& b_;
  std::vector<const RASTER_READER*> masks_;
};

/// Throws std::invalid_argument, which names both, unless the rasters have one size.
void CheckSameSize(const RASTER_READER& a, const RASTER_READER& b);

/// The sums over pixels that PAIR_LINES has read.
PAIR_SUMS SumPairs(std::span<const PAIR_LINES::VALUE> a, std::span<const PAIR_LINES::VALUE> b);
