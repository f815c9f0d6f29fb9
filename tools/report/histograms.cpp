#include "report/histograms.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "picture/plot.h"

namespace {

constexpr COLOUR bar_colour{40, 80, 170};

QUICKLOOK DrawBars(const char* title, const char* caption, const char* x_name,
                   std::vector<double> middles, std::vector<double> shares) {
  PLOT plot;
  plot.x_name = x_name;
  plot.y_name = "share [%]";
  plot.series.push_back({.name = "",
                         .style = PLOT_SERIES::STYLE::BARS,
                         .colour = bar_colour,
                         .x = std::move(middles),
                         .y = std::move(shares)});
  return {.title = title, .caption = caption, .png = Draw(plot).Png(), .reason = {}};
}

}  // namespace

QUICKLOOK CoherenceHistogram(const std::vector<double>& coherences) {
  constexpr int classes = 25;
  std::vector<double> middles(classes);
  std::vector<double> shares(classes);
  for (int i = 0; i < classes; ++i) {
    middles[static_cast<std::size_t>(i)] = (i + 0.5) / classes;
  }
  const auto count = std::count_if(coherences.begin(), coherences.end(),
                                   [](double coherence) { return !std::isnan(coherence); });
  for (const double coherence : coherences) {
    if (!std::isnan(coherence)) {
      const int i = std::clamp(static_cast<int>(coherence * classes), 0, classes - 1);
      shares[static_cast<std::size_t>(i)] += 100.0 / static_cast<double>(count);
    }
  }
  return DrawBars("Histogram of coherence", "Of boxes of the output with the master.", "coherence",
                  std::move(middles), std::move(shares));
}

QUICKLOOK AmplitudeHistogram(const AMPLITUDE_HISTOGRAM& amplitudes) {
  // Amplitudes that the histogram counts as 0 have no decibels.
  const auto decibels = [&](double share) {
    constexpr double least = std::numeric_limits<float>::min();
    return 20.0 * std::log10(std::max(amplitudes.Quantile(share), least));
  };
  const auto first = static_cast<int>(std::floor(decibels(0.001)));
  const auto last = static_cast<int>(std::floor(decibels(0.999)));
  const auto count_below = [&](int level) {
    return static_cast<double>(amplitudes.CountBelow(std::pow(10.0, level / 20.0)));
  };
  std::vector<double> middles;
  std::vector<double> shares;
  for (int level = first; level <= last; ++level) {
    middles.push_back(level + 0.5);
    shares.push_back(100.0 * (count_below(level + 1) - count_below(level)) /
                     static_cast<double>(amplitudes.Total()));
  }
  return DrawBars("Histogram of amplitude", "Of the output's pixels that are not 0.",
                  "amplitude [dB]", std::move(middles), std::move(shares));
}
