#pragma once

#include <vector>

#include "scene/scene_options.h"

/// Timing and Doppler centroid of the slave. With x and y the position in the image, from -1/2 to
/// +1/2 along samples and lines, the centroid is
///
///   fdc = F + R x + R x^2 / 4 + A y (1 + x / 20):
///
/// quadratic along range and linear along azimuth, so that annotated polynomials that are
/// interpolated linearly between their azimuth times give it exactly.
class SCENE_DOPPLER {
 public:
  explicit SCENE_DOPPLER(const SCENE_OPTIONS& options);

  static constexpr double prf = 1700.0;                       // Hz
  static constexpr double range_sampling_frequency = 20.0e6;  // Hz
  static constexpr double first_azimuth_time = 36000.0;       // s
  static constexpr double first_range_time = 5.5e-3;          // s

  /// The centroid [Hz] at a slave pixel position.
  double Frequency(double line, double sample) const noexcept;

  /// Phase [rad] that a target at the centroid gathers along azimuth from one line to another.
  ///
  /// A line counts as 1 / PRF even where the image is oversampled: that is how the resampling
  /// program turns the centroid into a phase, and the scene is made for it. The integral of the
  /// centroid, which is linear along azimuth, is its value in the middle times the distance.
  double Phase(double from_line, double line, double sample) const noexcept;

  /// The annotation: one polynomial in (range time - reference time) for each azimuth time.
  double ReferenceTime() const noexcept;
  std::vector<double> AzimuthTimes() const;
  std::vector<double> Coefficients(double azimuth_time) const;

 private:
  double AzimuthPosition(double line) const noexcept { return line / n_lines_ - 0.5; }

  double n_samples_;
  double n_lines_;
  double line_rate_;     ///< lines a second
  double sample_rate_;   ///< samples a second
  double centre_;        ///< F
  double over_range_;    ///< R
  double over_azimuth_;  ///< A
};
