#include "scene/scene_doppler.h"

#include <numbers>

SCENE_DOPPLER::SCENE_DOPPLER(const SCENE_OPTIONS& options)
    : n_samples_(options.n_samples),
      n_lines_(options.n_lines),
      line_rate_(options.oversampling * prf),
      sample_rate_(options.oversampling * range_sampling_frequency),
      centre_(options.doppler),
      over_range_(options.doppler_range),
      over_azimuth_(options.doppler_azimuth) {}

double SCENE_DOPPLER::Frequency(double line, double sample) const noexcept {
  const double x = sample / n_samples_ - 0.5;
  const double y = AzimuthPosition(line);
  return centre_ + over_range_ * (x + 0.25 * x * x) + over_azimuth_ * y * (1.0 + 0.05 * x);
}

double SCENE_DOPPLER::Phase(double from_line, double line, double sample) const noexcept {
  const double frequency = Frequency(0.5 * (from_line + line), sample);
  return 2.0 * std::numbers::pi * frequency / prf * (line - from_line);
}

double SCENE_DOPPLER::ReferenceTime() const noexcept {
  return first_range_time + 0.5 * n_samples_ / sample_rate_;
}

std::vector<double> SCENE_DOPPLER::AzimuthTimes() const {
  std::vector<double> times;
  for (const double position : {-0.05, 0.2, 0.5, 0.75, 1.05}) {
    times.push_back(first_azimuth_time + position * n_lines_ / line_rate_);
  }
  return times;
}

std::vector<double> SCENE_DOPPLER::Coefficients(double azimuth_time) const {
  const double y = AzimuthPosition((azimuth_time - first_azimuth_time) * line_rate_);
  const double x_rate = sample_rate_ / n_samples_;
  return {centre_ + over_azimuth_ * y, (over_range_ + 0.05 * over_azimuth_ * y) * x_rate,
          0.25 * over_range_ * x_rate * x_rate};
}
