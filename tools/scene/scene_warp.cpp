#include "scene/scene_warp.h"

namespace {

using COEFFICIENTS = SCENE_WARP::COEFFICIENTS;

/// From a polynomial in positions that run from -1 to +1 over the image to one in pixels.
COEFFICIENTS InPixels(const COEFFICIENTS& q, double n_samples, double n_lines) {
  const double a = 2.0 / n_samples;
  const double b = 2.0 / n_lines;
  return {q[0] - q[1] - q[2] + q[3] + q[4] + q[5],
          b * (q[1] - q[3] - 2.0 * q[4]),
          a * (q[2] - q[3] - 2.0 * q[5]),
          a * b * q[3],
          b * b * q[4],
          a * a * q[5]};
}

}  // namespace

SCENE_WARP::SCENE_WARP(const SCENE_OPTIONS& options)
    : range_(InPixels({options.shift_range, 0.2 * options.warp, 0.5 * options.warp,
                       0.1 * options.warp, 0.1 * options.warp, 0.1 * options.warp},
                      options.n_samples, options.n_lines)),
      azimuth_(InPixels({options.shift_azimuth, 0.5 * options.warp, -0.2 * options.warp,
                         -0.1 * options.warp, 0.1 * options.warp, -0.1 * options.warp},
                        options.n_samples, options.n_lines)) {}
