#include "check_run/coverage.h"

#include <atomic>
#include <cmath>

#include "base/parallel_lines.h"

namespace {

int StepFor(const COVERAGE_JOB& job, std::int64_t most_pixels) {
  const double pixels = static_cast<double>(job.n_samples) * job.n_lines;
  return static_cast<int>(
      std::ceil(std::sqrt(std::max(1.0, pixels / static_cast<double>(most_pixels)))));
}

/// Number of positions 0, step, 2 step, ... below `length`.
std::int64_t StepCount(int length, int step) {
  return (std::int64_t{length} + step - 1) / step;
}

std::int64_t ComputedInLine(const COVERAGE_JOB& job, std::int64_t line, int step) {
  std::int64_t computed = 0;
  const auto azimuth = static_cast<double>(line);
  for (std::int64_t sample = 0; sample < job.n_samples; sample += step) {
    const auto range = static_cast<double>(sample);
    if (job.footprint.Fits(job.mapping->GetSlaveRange(range, azimuth), job.slave_width) &&
        job.footprint.Fits(job.mapping->GetSlaveAzimuth(range, azimuth), job.slave_height)) {
      ++computed;
    }
  }
  return computed;
}

}  // namespace

COVERAGE MeasureCoverage(const COVERAGE_JOB& job, std::int64_t most_pixels) {
  COVERAGE coverage;
  coverage.step = StepFor(job, most_pixels);
  const std::int64_t lines = StepCount(job.n_lines, coverage.step);
  std::atomic<std::int64_t> computed = 0;
  ForEachLine(lines, [&](std::int64_t i) {
    computed += ComputedInLine(job, i * coverage.step, coverage.step);
  });
  coverage.looked_at = lines * StepCount(job.n_samples, coverage.step);
  coverage.computed = computed;
  return coverage;
}
