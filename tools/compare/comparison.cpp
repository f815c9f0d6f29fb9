#include "compare/comparison.h"

#include <cmath>
#include <complex>

#include "common/parallel_lines.h"

namespace {

using VALUE = PAIR_LINES::VALUE;
using LINE = PAIR_LINES::LINE;

/// The sum of what `of_line` makes of each line of a region, on all processors. The parts are added
/// in the order of the lines, so that the result is the same in every run.
template <class SUMS, class OF_LINE>
SUMS SumLines(const PAIR_LINES& pair, const REGION& region, const OF_LINE& of_line) {
  std::vector<SUMS> parts(static_cast<std::size_t>(region.n_lines));
  ForEachLine(region.n_lines, [&](std::int64_t i) {
    thread_local LINE line;
    pair.Read(region.first_line + i, region.first_sample, region.n_samples, line);
    parts[static_cast<std::size_t>(i)] = of_line(line);
  });
  SUMS sums;
  for (const SUMS& part : parts) {
    sums.Add(part);
  }
  return sums;
}

/// What is left of a once it is fitted to b.
struct RESIDUAL_SUMS {
  double phase = 0.0;  ///< squared phases
  double phase_weighted = 0.0;
  double amplitude = 0.0;
  double difference = 0.0;

  void Add(const RESIDUAL_SUMS& other) {
    phase += other.phase;
    phase_weighted += other.phase_weighted;
    amplitude += other.amplitude;
    difference += other.difference;
  }
};

double Power(const VALUE& value) {
  return value.real() * value.real() + value.imag() * value.imag();
}

RESIDUAL_SUMS SumResiduals(const LINE& line, const VALUE& factor) {
  RESIDUAL_SUMS sums;
  for (std::size_t i = 0; i < line.a.size(); ++i) {
    const VALUE& a = line.a[i];
    const VALUE& b = line.b[i];
    const VALUE fitted = {factor.real() * a.real() - factor.imag() * a.imag(),
                          factor.real() * a.imag() + factor.imag() * a.real()};
    const double phase = std::atan2(fitted.imag() * b.real() - fitted.real() * b.imag(),
                                    fitted.real() * b.real() + fitted.imag() * b.imag());
    const double power = Power(b);
    const double amplitude = std::sqrt(Power(fitted)) - std::sqrt(power);
    sums.phase += phase * phase;
    sums.phase_weighted += phase * phase * power;
    sums.amplitude += amplitude * amplitude;
    sums.difference += Power(fitted - b);
  }
  return sums;
}

}  // namespace

COMPARISON Compare(const PAIR_LINES& pair, const REGION& region) {
  const auto sums =
      SumLines<PAIR_SUMS>(pair, region, [](const LINE& line) { return SumPairs(line.a, line.b); });
  const VALUE factor = std::conj(sums.cross) / sums.power_a;
  const auto rest = SumLines<RESIDUAL_SUMS>(
      pair, region, [&](const LINE& line) { return SumResiduals(line, factor); });
  return {.compared = static_cast<std::int64_t>(sums.weight),
          .coherence = sums.Coherence(),
          .phase_mean = sums.weight > 0.0 ? std::arg(sums.cross) : NAN,
          .phase_rms = std::sqrt(rest.phase / sums.weight),
          .phase_rms_weighted = std::sqrt(rest.phase_weighted / sums.power_b),
          .amplitude_error = std::sqrt(rest.amplitude / sums.power_b),
          .complex_error = std::sqrt(rest.difference / sums.power_b),
          .gain = 1.0 / std::abs(factor)};
}
