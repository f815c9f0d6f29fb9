#include "picture/ticks.h"

#include <algorithm>
#include <cmath>

#include "logging/formatted_text.h"

namespace {

/// The first of 1, 2, 5, 10, ... times a power of ten that is at least `smallest`.
double RoundStep(double smallest) {
  const double decade = std::pow(10.0, std::floor(std::log10(smallest)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * decade >= smallest * (1.0 - 1e-9)) {
      return factor * decade;
    }
  }
  return 10.0 * decade;
}

std::string Label(double value, double step) {
  const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(step) + 1e-9)));
  return FormattedText("%.*f", decimals, value);
}

}  // namespace

std::vector<TICK> RoundTicks(double low, double high, double smallest_step) {
  const double step = RoundStep(smallest_step);
  const auto first = static_cast<long long>(std::ceil(low / step - 1e-9));
  const auto last = static_cast<long long>(std::floor(high / step + 1e-9));
  std::vector<TICK> ticks;
  for (long long i = first; i <= last; ++i) {
    const double value = static_cast<double>(i) * step;
    ticks.push_back({value, Label(value, step)});
  }
  return ticks;
}
