#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "match/amplitude_chip.h"

/// Two images and their azimuth centroids [turns a line], 0 where these are not known.
struct IMAGE_PAIR {
  const RASTER_READER& master;
  const RASTER_READER& slave;
  double master_centroid = 0.0;
  double slave_centroid = 0.0;
};

/// Sizes in pixels.
struct WINDOW_SHAPE {
  RANGE_AZIMUTH<int> window = {64, 64};
  RANGE_AZIMUTH<int> search = {8, 8};  ///< how far from the expected shift one is looked for
};

/// A measured shift: what has to be added to a master position for the slave position.
struct MATCHED_SHIFT {
  double range = 0.0;
  double azimuth = 0.0;
  /// Height of the correlation's peak over the mean of the rest of the searched shifts, in standard
  /// deviations of that rest: between images that have nothing in common 3 to 5.
  double snr = 0.0;
  /// Where in the window, from its centre, the features lie that tell the shift: their centroid.
  RANGE_AZIMUTH<double> features;
};

/// Finds the shift of single windows of the master by cross-correlation of amplitudes.
///
/// The correlation of the window's amplitudes with those of the slave, normalised by the slave's
/// variance within the shifted window, is evaluated for all shifts of half pixels within the
/// search; around its maximum the Fourier sum of the correlation is evaluated at any fraction, and
/// a surface of second order through 3 x 3 values close to the peak tells its place. Fractions of
/// pixels are thus no different from whole pixels.
class WINDOW_MATCH {
 public:
  WINDOW_MATCH(const WINDOW_SHAPE& shape, const IMAGE_PAIR& pair);

  /// Shift of the window whose first pixel is given, looked for around the expected one. Nothing
  /// where less than three quarters of the window have data in either image, or where the
  /// correlation is largest at the end of the search.
  std::optional<MATCHED_SHIFT> Find(std::int64_t sample, std::int64_t line,
                                    const RANGE_AZIMUTH<std::int64_t>& expected);

 private:
  /// A shift within the searched ones, in samples of the chips: half pixels.
  struct LAG {
    double column = 0.0;
    double row = 0.0;
  };
  struct PEAK {
    int column = 0;
    int row = 0;
  };
  using NINE = std::array<std::array<double, 3>, 3>;

  int LagColumns() const noexcept {
    return 2 * AMPLITUDE_CHIP::samples_a_pixel * shape_.search.range + 1;
  }
  int LagRows() const noexcept {
    return 2 * AMPLITUDE_CHIP::samples_a_pixel * shape_.search.azimuth + 1;
  }
  double& Surface(int row, int column) {
    return surface_[static_cast<std::size_t>(std::int64_t{row} * LagColumns() + column)];
  }

  void Correlate();
  void SumSquares();
  double SlaveVariance(int row, int column) const;
  void Normalise();
  PEAK FindPeak();
  double SignalToNoise(const PEAK& peak);
  RANGE_AZIMUTH<double> CentroidOfFeatures() const;
  LAG Refine(const PEAK& peak) const;
  NINE Correlations(const LAG& centre, double step) const;

  WINDOW_SHAPE shape_;
  const IMAGE_PAIR& pair_;
  AMPLITUDE_CHIP master_;
  AMPLITUDE_CHIP slave_;
  int columns_;  ///< of the transforms
  int rows_;
  REAL_TRANSFORM forward_;
  REAL_INVERSE backward_;
  REAL_ARRAY values_;
  COMPLEX_ARRAY master_spectrum_;
  COMPLEX_ARRAY cross_spectrum_;
  COMPLEX_ARRAY scratch_;
  double master_power_ = 0.0;
  /// Sums of the slave's values, and of their squares, over all rows and columns before a place.
  std::vector<double> sums_;
  std::vector<double> squares_;
  std::vector<double> surface_;
};
