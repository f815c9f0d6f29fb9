#include "report/quicklooks.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <filesystem>
#include <functional>
#include <string_view>

#include "base/error_exception.h"
#include "common/figure_text.h"
#include "mapping/mapping_polynomial.h"
#include "picture/raster_figure.h"
#include "report/shown_raster.h"

namespace {

/// Longer side of a picture: what a phone shows and a page of a dozen pictures can carry.
constexpr double picture_length = 480.0;

PICTURE_SIZE SizeFor(std::int64_t samples, std::int64_t lines) {
  const double longer = static_cast<double>(std::max<std::int64_t>({samples, lines, 1}));
  const double zoom = picture_length / longer;
  const double width = static_cast<double>(samples) * (zoom > 1.0 ? std::floor(zoom) : zoom);
  return {.width = std::max(1, static_cast<int>(std::lround(width))), .height = {}};
}

PICTURE_SIZE SizeFor(const RASTER_READER& raster) {
  return SizeFor(raster.Width(), raster.Height());
}

/// Draws what `make` returns, and fills in the caption if `make` has not.
QUICKLOOK Draw(const std::string& title, const std::function<FIGURE(QUICKLOOK&)>& make) {
  QUICKLOOK picture{.title = title, .caption = {}, .png = {}, .reason = {}};
  try {
    FIGURE figure = make(picture);
    picture.caption += (picture.caption.empty() ? "" : " ") + figure.subtitle + ".";
    // The page tells them in letters that a phone can show.
    figure.title.clear();
    figure.subtitle.clear();
    picture.png = Draw(figure).Png();
  } catch (const ERROR_EXCEPTION& error) {
    picture.reason = error.what();
  } catch (const std::exception& error) {
    picture.reason = error.what();
  }
  return picture;
}

using PATH = std::optional<std::string>;

void AddAmplitude(QUICKLOOK_GROUP& group, const char* title, const PATH& path) {
  if (path) {
    group.pictures.push_back(Draw(title, [&](QUICKLOOK&) {
      const SHOWN_RASTER raster(*path);
      return AmplitudeFigure(raster, SizeFor(raster));
    }));
  }
}

void AddShifts(QUICKLOOK_GROUP& group, const char* title, const char* unit, const PATH& path) {
  if (path) {
    group.pictures.push_back(Draw(title, [&](QUICKLOOK&) {
      const SHOWN_RASTER raster(*path);
      FIGURE figure = ValueFigure(raster, SizeFor(raster));
      figure.scale.name = std::string("shift [") + unit + "]";
      return figure;
    }));
  }
}

/// What `match` and `interferogram` have left in the directory of the run.
QUICKLOOK_GROUP DrawPairFiles(const RUN_RECORD& run) {
  constexpr std::pair<std::string_view, const char*> kinds[] = {
      {"_snr.ras", "Signal-to-noise ratio of the shifts"}, {"_coherence.ras", "Coherence"}};
  QUICKLOOK_GROUP group{"Measured shifts and interferogram", {}};
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(run.Resolved("."))) {
    paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  for (const auto& [end, name] : kinds) {
    for (const std::filesystem::path& path : paths) {
      const std::string file = path.filename().string();
      if (file.ends_with(end)) {
        group.pictures.push_back(Draw(std::string(name) + ", " + file, [&](QUICKLOOK&) {
          const SHOWN_RASTER raster(path.string());
          return ValueFigure(raster, SizeFor(raster));
        }));
      }
    }
  }
  return group;
}

/// The shifts of a mapping polynomial over the output.
FIGURE PolynomialFigure(const RUN_RECORD& run, bool along_range) {
  const MAPPING_POLYNOMIAL mapping(run.File("INSAR_PARAMETER_POOL").value_or("").c_str());
  const SIZE size = ShownSize(run.Samples(), run.Lines(), SizeFor(run.Samples(), run.Lines()));
  CELL_GRID<double> shifts(size.width, size.height);
  for (int row = 0; row < size.height; ++row) {
    const double line = (row + 0.5) * static_cast<double>(run.Lines()) / size.height;
    for (int column = 0; column < size.width; ++column) {
      const double sample = (column + 0.5) * static_cast<double>(run.Samples()) / size.width;
      shifts.At(column, row) = along_range ? mapping.GetSlaveRange(sample, line) - sample
                                           : mapping.GetSlaveAzimuth(sample, line) - line;
    }
  }
  const auto [low, high] = std::minmax_element(shifts.Cells().begin(), shifts.Cells().end());
  const double margin = std::max(0.0, 1e-3 - (*high - *low)) / 2.0;
  COLOUR_SCALE scale{*low - margin,
                     *high + margin,
                     SequentialMap,
                     along_range ? "shift [samples]" : "shift [lines]",
                     {}};
  scale.ticks = RoundTicks(scale.low, scale.high, (scale.high - scale.low) / 8.0);
  return {"",          "mapping polynomial", std::move(shifts), run.Samples(),
          run.Lines(), size.width,           size.height,       scale};
}

QUICKLOOK_GROUP DrawShifts(const RUN_RECORD& run) {
  QUICKLOOK_GROUP group{"Shifts of the mapping", {}};
  AddShifts(group, "Range shift", "samples", run.File("RG_MAPPING_FILE"));
  AddShifts(group, "Azimuth shift", "lines", run.File("AZ_MAPPING_FILE"));
  if (group.pictures.empty() && run.Samples() > 0 && run.Lines() > 0 &&
      run.Log().Parameter("MAPPING_FORMAT") == "polynomial") {
    group.pictures.push_back(
        Draw("Range shift", [&](QUICKLOOK&) { return PolynomialFigure(run, true); }));
    group.pictures.push_back(
        Draw("Azimuth shift", [&](QUICKLOOK&) { return PolynomialFigure(run, false); }));
  }
  return group;
}

std::string MeanText(const CELL_GRID<double>& values) {
  double sum = 0.0;
  double count = 0.0;
  for (const double value : values.Cells()) {
    if (!std::isnan(value)) {
      sum += value;
      ++count;
    }
  }
  return "Mean coherence " + FigureText(sum / count, 3) + ".";
}

using PAIR_FIGURE = FIGURE (*)(const RASTER_READER&, const RASTER_READER&, const PICTURE_SIZE&);

void AddPair(QUICKLOOK_GROUP& group, const std::string& title, const std::string& master,
             const PATH& path, PAIR_FIGURE make) {
  if (path) {
    group.pictures.push_back(Draw(title, [&](QUICKLOOK& picture) {
      const SHOWN_RASTER master_raster(master);
      const SHOWN_RASTER raster(*path);
      FIGURE figure = make(master_raster, raster, SizeFor(master_raster));
      if (make == CoherenceFigure) {
        picture.caption = MeanText(figure.values);
      }
      return figure;
    }));
  }
}

void AddPairs(std::vector<QUICKLOOK_GROUP>& groups, const RUN_RECORD& run,
              const std::string& master) {
  const PATH before = run.File("SlaveIn");
  const PATH after = run.Output("SlaveOut");
  QUICKLOOK_GROUP phase{"Interferometric phase with the master", {}};
  AddPair(phase, "Interferogram before", master, before, InterferogramFigure);
  AddPair(phase, "Interferogram after", master, after, InterferogramFigure);
  QUICKLOOK_GROUP coherence{"Coherence with the master", {}};
  AddPair(coherence, "Coherence before", master, before, CoherenceFigure);
  AddPair(coherence, "Coherence after", master, after, CoherenceFigure);
  groups.push_back(std::move(phase));
  groups.push_back(std::move(coherence));
}

}  // namespace

std::vector<QUICKLOOK_GROUP> DrawQuicklooks(const RUN_RECORD& run, const std::string& master) {
  std::vector<QUICKLOOK_GROUP> groups;
  QUICKLOOK_GROUP amplitude{"Amplitude", {}};
  AddAmplitude(amplitude, "Slave before", run.File("SlaveIn"));
  AddAmplitude(amplitude, "Slave after", run.Output("SlaveOut"));
  if (!master.empty()) {
    AddAmplitude(amplitude, "Master", master);
  }
  groups.push_back(std::move(amplitude));
  if (!master.empty()) {
    AddPairs(groups, run, master);
  }
  groups.push_back(DrawShifts(run));
  groups.push_back(DrawPairFiles(run));
  if (const PATH mask = run.Output("MaskOut")) {
    const auto draw = [&](QUICKLOOK&) {
      const SHOWN_RASTER raster(*mask);
      return MaskFigure(raster, SizeFor(raster));
    };
    groups.push_back({"Valid pixels", {Draw("Output mask", draw)}});
  }
  std::erase_if(groups, [](const QUICKLOOK_GROUP& group) { return group.pictures.empty(); });
  return groups;
}
