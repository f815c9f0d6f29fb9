#pragma once

#include <complex>
#include <cstdint>

#include "scene/periodic_signal.h"
#include "scene/scene_doppler.h"
#include "scene/scene_options.h"

/// The signal of a scene, defined at every slave position (line y, sample x, not only at pixels):
///
///   s(y, x) = sum over blocks n of h(y / P - n) b[n mod 2](y, x) exp(i psi_n(y, x)).
///
/// - b[0], b[1]: band-limited speckle at baseband, independent of each other, over the same
///   reflectivity (fields of different brightness, and point targets in one of them). Both repeat
///   with the tile's size T, and P = T / 2.
/// - psi_n: phase of the Doppler centroid along azimuth, counted from the block's middle line
///   n P. Along azimuth the spectrum is centred at the centroid everywhere, as in a focused image.
/// - h(u) = cos(pi / 2 sin^2(pi u / 2)) for |u| < 1: neighbouring blocks share the lines between
///   their middles, and their powers add up to 1.
///
/// The blocks are there because one phase over the whole image would, where the centroid varies
/// along range, grow into a range carrier that no focused image has.
///
/// The slave is s at the pixels, the master is s at the mapped positions, so that a perfect
/// resampling of the slave is the master. Each can be given noise of its own.
///
/// The resampling program's quadratic phase follows from the centroid's rate for images that
/// are not oversampled; with its rate term on and an oversampling F other than 1 it is F times
/// too strong for this signal, as for any other.
class SCENE_SIGNAL {
 public:
  /// Throws std::invalid_argument as PERIODIC_SIGNAL does.
  explicit SCENE_SIGNAL(const SCENE_OPTIONS& options);

  std::complex<double> AtPixel(std::int64_t line, std::int64_t sample) const noexcept;
  std::complex<double> At(double line, double sample) const noexcept;

 private:
  std::complex<double> Blend(const PERIODIC_SIGNAL::VALUES& values, double line,
                             double sample) const noexcept;

  PERIODIC_SIGNAL baseband_;
  SCENE_DOPPLER doppler_;
  double block_length_;  ///< P
};
