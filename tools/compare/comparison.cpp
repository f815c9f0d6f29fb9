#include "compare/comparison.h"

#include <cmath>
#include <complex>

#include "common/pair_sums.h"

namespace {

using VALUE = std::complex<double>;
using LINE = std::vector<VALUE>;

bool IsUsable(const VALUE& value) {
  return std::isfinite(value.real()) && std::isfinite(value.imag()) && value != 0.0;
}

/// The rasters of a comparison within a region.
class PAIR {
 public:
  PAIR(const RASTER_READER& a, const RASTER_READER& b,
       const std::vector<const RASTER_READER*>& masks, const REGION& region)
      : a_(a), b_(b), masks_(masks), region_(region) {}

  /// Calls `handle(a, b)` for the pixels to compare, line by line.
  template <class HANDLE>
  void ForEachPixel(HANDLE handle) const {
    for (std::int64_t i = 0; i < region_.n_lines; ++i) {
      const std::int64_t line = region_.first_line + i;
      const LINE a = Read(a_, line);
      const LINE b = Read(b_, line);
      const std::vector<bool> valid = ReadMasks(line);
      for (std::size_t sample = 0; sample < a.size(); ++sample) {
        if (valid[sample] && IsUsable(a[sample]) && IsUsable(b[sample])) {
          handle(a[sample], b[sample]);
        }
      }
    }
  }

 private:
  LINE Read(const RASTER_READER& raster, std::int64_t line) const {
    LINE values(static_cast<std::size_t>(region_.n_samples));
    raster.ReadLine(line, region_.first_sample, values);
    return values;
  }

  std::vector<bool> ReadMasks(std::int64_t line) const {
    std::vector<bool> valid(static_cast<std::size_t>(region_.n_samples), true);
    for (const RASTER_READER* mask : masks_) {
      const LINE values = Read(*mask, line);
      for (std::size_t sample = 0; sample < valid.size(); ++sample) {
        valid[sample] = valid[sample] && values[sample] != 0.0;
      }
    }
    return valid;
  }

  const RASTER_READER& a_;
  const RASTER_READER& b_;
  const std::vector<const RASTER_READER*>& masks_;
  const REGION region_;
};

PAIR_SUMS SumPixels(const PAIR& pair) {
  PAIR_SUMS sums;
  pair.ForEachPixel([&](const VALUE& a, const VALUE& b) { sums.Add(PAIR_SUMS::Of(a, b)); });
  return sums;
}

}  // namespace

COMPARISON Compare(const RASTER_READER& a, const RASTER_READER& b,
                   const std::vector<const RASTER_READER*>& masks, const REGION& region) {
  const PAIR pair(a, b, masks, region);
  const PAIR_SUMS sums = SumPixels(pair);
  const VALUE factor = std::conj(sums.cross) / sums.power_a;

  double phase = 0.0;
  double phase_weighted = 0.0;
  double amplitude = 0.0;
  double difference = 0.0;
  pair.ForEachPixel([&](const VALUE& value_a, const VALUE& value_b) {
    const VALUE fitted = factor * value_a;
    const double deviation = std::arg(fitted * std::conj(value_b));
    phase += deviation * deviation;
    phase_weighted += deviation * deviation * std::norm(value_b);
    amplitude += std::pow(std::abs(fitted) - std::abs(value_b), 2);
    difference += std::norm(fitted - value_b);
  });
  return {.compared = static_cast<std::int64_t>(sums.weight),
          .coherence = sums.Coherence(),
          .phase_mean = sums.weight > 0.0 ? std::arg(sums.cross) : NAN,
          .phase_rms = std::sqrt(phase / sums.weight),
          .phase_rms_weighted = std::sqrt(phase_weighted / sums.power_b),
          .amplitude_error = std::sqrt(amplitude / sums.power_b),
          .complex_error = std::sqrt(difference / sums.power_b),
          .gain = 1.0 / std::abs(factor)};
}
