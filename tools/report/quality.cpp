#include "report/quality.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>

#include "app/input_setup.h"
#include "base/error_exception.h"
#include "check_run/run_physics.h"
#include "common/figure_text.h"
#include "compare/comparison.h"
#include "info/amplitude_histogram.h"
#include "info/type_ends.h"
#include "logging/formatted_text.h"
#include "logging/logging.h"
#include "picture/multilook.h"
#include "report/histograms.h"
#include "report/shift_fit.h"
#include "report/shown_raster.h"

namespace {

/// Below it an output is taken for one that has nothing in common with the master.
constexpr double least_coherence = 0.3;

/// Pixels along each side of a box: noise alone has a coherence of about 0.1 in it.
constexpr int box = 9;
constexpr std::int64_t most_boxes = 1000;  ///< along each axis

/// Hears the first alarm that is logged while it lives: it tells what an error itself does not.
class ALARM_LISTENER {
 public:
  ALARM_LISTENER() {
    Log().SetReceiver([this](LOGGING_LEVEL_T level, std::string_view text) {
      if (level == LOGGING_LEVEL_T::ALARM && alarm_.empty()) {
        alarm_ = text;
      }
    });
  }
  ALARM_LISTENER(const ALARM_LISTENER&) = delete;
  ALARM_LISTENER& operator=(const ALARM_LISTENER&) = delete;
  ~ALARM_LISTENER() { Log().SetReceiver({}); }

  const std::string& Alarm() const noexcept { return alarm_; }

 private:
  std::string alarm_;
};

/// What `measure` throws becomes the reason why there is no figure of the name.
void Try(QUALITY& quality, const char* name, const std::function<void()>& measure) {
  const ALARM_LISTENER listener;
  const auto miss = [&](const char* reason) {
    quality.figures.push_back({name, "", listener.Alarm().empty() ? reason : listener.Alarm()});
  };
  try {
    measure();
  } catch (const ERROR_EXCEPTION& error) {
    miss(error.what());
  } catch (const std::exception& error) {
    miss(error.what());
  } catch (const char* text) {
    miss(text);
  }
}

std::string Required(const std::optional<std::string>& path, const char* name) {
  if (!path) {
    throw std::runtime_error(std::string("the log tells no ") + name);
  }
  return *path;
}

std::string OutputOf(const RUN_RECORD& run) {
  return Required(run.Output("SlaveOut"), "output");
}

LINE_SUMS SumsOf(const PAIR_LINES& pair) {
  return
      [&pair, values = PAIR_LINES::LINE()](std::int64_t line, std::span<PAIR_SUMS> pixels) mutable {
        pair.Read(line, 0, static_cast<std::int64_t>(pixels.size()), values);
        std::transform(values.a.begin(), values.a.end(), values.b.begin(), pixels.begin(),
                       PAIR_SUMS::Of);
      };
}

/// Of boxes of the image; NaN of those without a pixel.
std::vector<double> LocalCoherences(const PAIR_LINES& pair) {
  const auto count = [](std::int64_t length) {
    return static_cast<int>(std::clamp<std::int64_t>(length / box, 1, most_boxes));
  };
  const CELL_GRID<PAIR_SUMS> sums = Multilook(SumsOf(pair), pair.Width(), pair.Height(),
                                              count(pair.Width()), count(pair.Height()));
  std::vector<double> coherences;
  for (const PAIR_SUMS& cell : sums.Cells()) {
    coherences.push_back(cell.Coherence());
  }
  return coherences;
}

double MeanOf(const std::vector<double>& values) {
  double sum = 0.0;
  double count = 0.0;
  for (const double value : values) {
    if (!std::isnan(value)) {
      sum += value;
      ++count;
    }
  }
  return sum / count;
}

void MeasureFit(const RUN_RECORD& run, const std::string& master, QUALITY& quality) {
  const SHOWN_RASTER output(OutputOf(run));
  const SHOWN_RASTER reference(master);
  std::optional<SHOWN_RASTER> mask;
  std::vector<const RASTER_READER*> masks;
  if (const auto path = run.Output("MaskOut")) {
    masks.push_back(&mask.emplace(*path));
  }
  const PAIR_LINES pair(output, reference, masks);
  const COMPARISON fit = Compare(pair, {0, 0, pair.Width(), pair.Height()});
  if (fit.compared == 0) {
    throw std::runtime_error("there is no pixel to compare");
  }
  const std::vector<double> coherences = LocalCoherences(pair);
  const double local = MeanOf(coherences);
  quality.misfits = fit.coherence < least_coherence && local < least_coherence;
  quality.figures.push_back({"Coherence with the master", FigureText(fit.coherence, 3), ""});
  quality.figures.push_back({"Mean coherence of boxes", FigureText(local, 3), ""});
  quality.figures.push_back({"RMS phase to the master", FigureText(fit.phase_rms, 3) + " rad", ""});
  quality.histograms.push_back(CoherenceHistogram(coherences));
}

template <class HANDLE>
void ForEachPixel(const RASTER_READER& raster, HANDLE handle) {
  std::vector<std::complex<double>> values(static_cast<std::size_t>(raster.Width()));
  for (std::int64_t line = 0; line < raster.Height(); ++line) {
    raster.ReadLine(line, 0, values);
    std::for_each(values.begin(), values.end(), handle);
  }
}

std::string ShareText(std::int64_t part, std::int64_t whole) {
  return FormattedText("%.2f %%", 100.0 * static_cast<double>(part) / static_cast<double>(whole));
}

void MeasureValidShare(const RUN_RECORD& run, QUALITY& quality) {
  const SHOWN_RASTER mask(Required(run.Output("MaskOut"), "output mask"));
  std::int64_t valid = 0;
  ForEachPixel(mask, [&](std::complex<double> value) { valid += value != 0.0 ? 1 : 0; });
  quality.figures.push_back({"Valid pixels", ShareText(valid, mask.Width() * mask.Height()), ""});
}

void MeasureValues(const RUN_RECORD& run, QUALITY& quality) {
  const SHOWN_RASTER output(OutputOf(run));
  const TYPE_ENDS ends(output.Type());
  AMPLITUDE_HISTOGRAM amplitudes;
  std::int64_t saturated = 0;
  ForEachPixel(output, [&](std::complex<double> value) {
    const double amplitude = std::abs(value);
    if (std::isfinite(amplitude) && amplitude > 0.0) {
      saturated += ends.Saturated(value);
      amplitudes.Add(amplitude);
    }
  });
  if (amplitudes.Total() == 0) {
    throw std::runtime_error("no pixel of the output is other than 0");
  }
  quality.histograms.push_back(AmplitudeHistogram(amplitudes));
  if (!ends.Exist()) {
    throw std::runtime_error("pixels of the output's type know no limit");
  }
  quality.figures.push_back(
      {"Saturated components",
       ShareText(saturated, 2 * amplitudes.Total()) + " (" + std::to_string(saturated) + ")", ""});
}

void AddFindings(const RUN_RECORD& run, QUALITY& quality) {
  if (const std::optional<RUN_FINDINGS> findings = run.Log().Findings()) {
    quality.figures.push_back({"Saturated, by the run", findings->saturated, ""});
    quality.figures.push_back({"Non-finite inputs", findings->non_finite, ""});
  }
}

/// Fills the input as the run had it, as far as the centroid and the shifts need it.
void FillInput(const RUN_RECORD& run, RESAMPLE_INPUT& input) {
  const auto limit = std::int64_t{std::numeric_limits<int>::max()};
  input.n_samples = static_cast<int>(std::min(run.Samples(), limit));
  input.n_lines = static_cast<int>(std::min(run.Lines(), limit));
  if (input.n_samples < 1 || input.n_lines < 1) {
    throw std::runtime_error("the log tells no size of the output");
  }
  const auto file = [&](const char* name) { return Required(run.File(name), name); };
  PARAMETER_POOL insar_pool(file("INSAR_PARAMETER_POOL").c_str());
  MAPPING_PARAMETERS mapping;
  mapping.format.Assign(
      Required(run.Log().Parameter("MAPPING_FORMAT"), "format of the mapping").c_str());
  mapping.rg_file = run.File("RG_MAPPING_FILE").value_or("");
  mapping.az_file = run.File("AZ_MAPPING_FILE").value_or("");
  MapSlave(file("SlaveIn"), input);
  OpenMapping(mapping, insar_pool, input);
  ReadAnnotation(file("SLAVE_PARAMETER_POOL"), insar_pool, input);
}

std::string SpanText(const SPAN& span, const char* unit) {
  return FormattedText("%.4g to %.4g %s", span.least, span.most, unit);
}

void MeasurePhysics(const RESAMPLE_INPUT& input, QUALITY& quality) {
  const RUN_PHYSICS physics = LookAtPhysics(input, 0);
  quality.figures.push_back(
      {"Doppler centroid",
       SpanText(physics.centroid, "Hz") + FormattedText(", %.3g to %.3g PRF",
                                                        physics.centroid.least / physics.prf,
                                                        physics.centroid.most / physics.prf),
       ""});
  quality.figures.push_back({"Range shift", SpanText(physics.range_shift, "samples"), ""});
  quality.figures.push_back({"Azimuth shift", SpanText(physics.azimuth_shift, "lines"), ""});
}

void AddDepartures(const std::string& of_what, const RANGE_AZIMUTH<DEPARTURE>& departures,
                   QUALITY& quality) {
  const auto add = [&](const char* axis, const DEPARTURE& departure, const char* unit) {
    const std::string text = FigureText(departure.rms, 3) + " " + unit + " RMS, " +
                             FigureText(departure.largest, 3) + " at most, of " +
                             std::to_string(departure.points);
    quality.figures.push_back({axis + of_what, text, ""});
  };
  add("Range shifts, ", departures.range, "samples");
  add("Azimuth shifts, ", departures.azimuth, "lines");
}

/// The prefixes of what `match` has left in the directory of the run.
std::vector<std::string> MeasuredShifts(const RUN_RECORD& run) {
  constexpr std::string_view end = "_range.ras";
  std::vector<std::string> prefixes;
  for (const auto& entry : std::filesystem::directory_iterator(run.Resolved("."))) {
    const std::string path = entry.path().string();
    const std::string prefix = path.substr(0, path.size() - std::min(path.size(), end.size()));
    if (path.ends_with(end) && std::filesystem::exists(prefix + ".pool")) {
      prefixes.push_back(prefix);
    }
  }
  std::sort(prefixes.begin(), prefixes.end());
  return prefixes;
}

void MeasureShifts(const RUN_RECORD& run, const RESAMPLE_INPUT& input, QUALITY& quality) {
  Try(quality, "Shifts, mapping less polynomial",
      [&] { AddDepartures("mapping less polynomial", DepartureFromPolynomials(input), quality); });
  for (const std::string& prefix : MeasuredShifts(run)) {
    const std::string name = std::filesystem::path(prefix).filename().string() + " less mapping";
    Try(quality, ("Shifts, " + name).c_str(),
        [&] { AddDepartures(name, DepartureFromMapping(prefix, *input.mapping), quality); });
  }
}

}  // namespace

QUALITY MeasureQuality(const RUN_RECORD& run, const std::string& master) {
  QUALITY quality;
  if (!master.empty()) {
    Try(quality, "Fit to the master", [&] { MeasureFit(run, master, quality); });
  }
  Try(quality, "Valid pixels", [&] { MeasureValidShare(run, quality); });
  Try(quality, "Saturated components", [&] { MeasureValues(run, quality); });
  AddFindings(run, quality);
  Try(quality, "Centroid and shifts", [&] {
    RESAMPLE_INPUT input;
    FillInput(run, input);
    MeasurePhysics(input, quality);
    MeasureShifts(run, input, quality);
  });
  return quality;
}
