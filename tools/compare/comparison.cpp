#include "compare/comparison.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>

#include "base/parallel_lines.h"

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
    const std::int64_t end = region.first_sample + region.n_samples;
    for (std::int64_t first = region.first_sample; first < end; first += PAIR_LINES::handy_count) {
      pair.Read(region.first_line + i, first, std::min(PAIR_LINES::handy_count, end - first), line);
      parts[static_cast<std::size_t>(i)].Add(of_line(line));
    }
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

/// |arg(re + i im)|, 0 for 0, to 1e-10 and in less than half of the library's time: it is what a
/// comparison would spend most of its time on. The series of atan for at most tan(pi / 8), which
/// the symmetries of the circle reduce every angle to.
double AbsolutePhase(double re, double im) {
  constexpr double pi = std::numbers::pi;
  constexpr double tangent_of_eighth = std::numbers::sqrt2 - 1.0;
  const double x = std::abs(re);
  const double y = std::abs(im);
  const double low = std::min(x, y);
  const double high = std::max(x, y);
  // Factors of 0 and 1 in place of decisions, which no processor can foresee in noise.
  const double beyond_eighth = static_cast<double>(low > tangent_of_eighth * high);
  const double steep = static_cast<double>(y > x);
  const double backward = static_cast<double>(re < 0.0);
  const double t = (low - beyond_eighth * high) /
                   (high + beyond_eighth * low + std::numeric_limits<double>::min());
  const double z = t * t;
  // 1 - z / 3 + z^2 / 5 - ..., the even and the odd terms by themselves, which run side by side.
  const double zz = z * z;
  const double even =
      1.0 + zz * (1.0 / 5 + zz * (1.0 / 9 + zz * (1.0 / 13 + zz * (1.0 / 17 + zz * (1.0 / 21)))));
  const double odd = 1.0 / 3 + zz * (1.0 / 7 + zz * (1.0 / 11 + zz * (1.0 / 15 + zz * (1.0 / 19))));
  const double series = even - z * odd;
  const double in_eighth = t * series + 0.25 * pi * beyond_eighth;
  const double in_quarter = 0.5 * pi * steep + (1.0 - 2.0 * steep) * in_eighth;
  return pi * backward + (1.0 - 2.0 * backward) * in_quarter;
}

RESIDUAL_SUMS SumResiduals(const LINE& line, const VALUE& factor) {
  constexpr std::size_t block = 256;
  const double factor_re = factor.real();
  const double factor_im = factor.imag();
  std::array<double, block> phases{};
  std::array<double, block> powers{};
  std::array<double, block> amplitudes{};
  std::array<double, block> differences{};
  RESIDUAL_SUMS sums;
  for (std::size_t first = 0; first < line.a.size(); first += block) {
    const std::size_t count = std::min(block, line.a.size() - first);
    const auto* a = reinterpret_cast<const double*>(line.a.data() + first);
    const auto* b = reinterpret_cast<const double*>(line.b.data() + first);
    // The compiler makes vectors of this loop, and the next one keeps the order of the sums.
    for (std::size_t i = 0; i < count; ++i) {
      const double b_re = b[2 * i];
      const double b_im = b[2 * i + 1];
      const double fitted_re = factor_re * a[2 * i] - factor_im * a[2 * i + 1];
      const double fitted_im = factor_re * a[2 * i + 1] + factor_im * a[2 * i];
      const double phase =
          AbsolutePhase(fitted_re * b_re + fitted_im * b_im, fitted_im * b_re - fitted_re * b_im);
      const double power = b_re * b_re + b_im * b_im;
      const double fitted_power = fitted_re * fitted_re + fitted_im * fitted_im;
      const double left_re = fitted_re - b_re;
      const double left_im = fitted_im - b_im;
      phases[i] = phase * phase;
      powers[i] = power;
      amplitudes[i] = fitted_power + power - 2.0 * std::sqrt(fitted_power * power);
      differences[i] = left_re * left_re + left_im * left_im;
    }
    for (std::size_t i = 0; i < count; ++i) {
      sums.phase += phases[i];
      sums.phase_weighted += phases[i] * powers[i];
      sums.amplitude += amplitudes[i];
      sums.difference += differences[i];
    }
  }
  // Rounding may leave less than nothing of equal amplitudes.
  sums.amplitude = std::max(sums.amplitude, 0.0);
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
