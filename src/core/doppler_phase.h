#pragma once

#include <cstdint>

#include "core/doppler_centroid_model.h"

/// Phase of the Doppler centroid around one output pixel, in radians, relative to the position
/// itself: at a line offset t from the pixel it is
/// ramp * (fraction - t) + curvature * (fraction^2 - t^2).
struct DOPPLER_PHASE {
  double ramp;       ///< 2 pi fdc / PRF: the PRF without the oversampling factor
  double curvature;  ///< pi (d fdc / dt) / PRF^2, 0 without rate term

  double At(double fraction, double t) const {
    return ramp * (fraction - t) + curvature * (fraction * fraction - t * t);
  }
};

/// Evaluates the Doppler centroid at integer slave positions.
class DOPPLER_SAMPLER {
 public:
  DOPPLER_SAMPLER(const DOPPLER_CENTROID_MODEL& model, bool with_rate)
      : model_(model),
        line_rate_(model.Oversampling() * model.Prf()),
        sample_rate_(model.Oversampling() * model.RangeSamplingFrequency()),
        rate_step_(100.0 / line_rate_),
        with_rate_(with_rate) {}

  const DOPPLER_CENTROID_MODEL& Model() const { return model_; }
  bool WithRate() const { return with_rate_; }
  /// Samples a second.
  double SampleRate() const { return sample_rate_; }
  /// The time of a hundred lines: the rate of change is the centroid's difference over twice it.
  double RateStep() const { return rate_step_; }

  double AzimuthTime(std::int64_t line) const {
    return model_.azimuth_start_time + static_cast<double>(line) / line_rate_;
  }
  double RangeTime(std::int64_t sample) const {
    return model_.range_start_time + static_cast<double>(sample) / sample_rate_;
  }

  DOPPLER_PHASE PhaseAt(std::int64_t sample, std::int64_t line) const {
    const double azimuth_time = AzimuthTime(line);
    const double range_time = RangeTime(sample);
    const double fdc = model_.Frequency(azimuth_time, range_time);
    const double prf = model_.Prf();
    return {two_pi * fdc / prf, Rate(azimuth_time, range_time) / (prf * prf)};
  }

 private:
  static constexpr double two_pi = 6.283185307179586;

  /// pi times the centroid's rate of change [1/s^2].
  double Rate(double azimuth_time, double range_time) const {
    if (!with_rate_) {
      return 0.0;
    }
    const double later = model_.Frequency(azimuth_time + rate_step_, range_time);
    const double earlier = model_.Frequency(azimuth_time - rate_step_, range_time);
    return ((later - earlier) / (2.0 * rate_step_)) * 0.5 * two_pi;
  }

  const DOPPLER_CENTROID_MODEL& model_;
  const double line_rate_;
  const double sample_rate_;
  const double rate_step_;
  const bool with_rate_;
};
