#include "picture/raster_figure.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "logging/formatted_text.h"
#include "picture/multilook.h"

namespace {

constexpr double no_value = std::numeric_limits<double>::quiet_NaN();

/// Pixels along each side of a box, so that the noise of single pixels does not hide the fringes.
constexpr int fringe_box = 3;

/// Pixels along each side of a box below which a coherence estimate is mostly bias.
constexpr int coherence_box = 5;

void RefuseEmpty(const RASTER_READER& image) {
  if (image.Width() < 1 || image.Height() < 1) {
    throw std::invalid_argument("no pixels in " + image.Path());
  }
}

void RefuseReal(const RASTER_READER& image) {
  if (!image.IsComplex()) {
    throw std::invalid_argument("pixels are not complex in " + image.Path());
  }
}

void RefuseUnfitPair(const RASTER_READER& a, const RASTER_READER& b) {
  RefuseReal(a);
  RefuseReal(b);
  if (a.Width() != b.Width() || a.Height() != b.Height()) {
    throw std::invalid_argument("different sizes of " + a.Path() + " and " + b.Path());
  }
}

/// The image with its subtitle; title and scale are left open. `value_of` makes the value of a
/// cell from its sums.
template <class VALUE_OF>
FIGURE MultilookedFigure(const RASTER_READER& image, const LINE_SUMS& line_sums,
                         const PICTURE_SIZE& wanted, int box, VALUE_OF value_of) {
  RefuseEmpty(image);
  const SIZE size = ShownSize(image.Width(), image.Height(), wanted);
  const RANGE_AZIMUTH<int> looks = wanted.looks.value_or(RANGE_AZIMUTH<int>{box, box});
  const int columns = CellCount(size.width, image.Width(), looks.range);
  const int rows = CellCount(size.height, image.Height(), looks.azimuth);
  const CELL_GRID<PAIR_SUMS> sums =
      Multilook(line_sums, image.Width(), image.Height(), columns, rows);
  CELL_GRID<double> values(columns, rows);
  std::transform(sums.Cells().begin(), sums.Cells().end(), values.Cells().begin(), value_of);
  return {"", "", std::move(values), image.Width(), image.Height(), size.width, size.height, {}};
}

std::string FileName(const RASTER_READER& image) {
  return std::filesystem::path(image.Path()).filename().string();
}

/// The names of the files and "500 x 400 pixels, 2.5 x 2.5 looks".
std::string Subtitle(const std::string& names, const FIGURE& figure) {
  return names + FormattedText(", %lld x %lld pixels, %.3g x %.3g looks",
                               static_cast<long long>(figure.samples),
                               static_cast<long long>(figure.lines),
                               static_cast<double>(figure.samples) / figure.values.Columns(),
                               static_cast<double>(figure.lines) / figure.values.Rows());
}

double DecibelsOf(const PAIR_SUMS& sums) {
  return sums.power_a > 0.0 ? 10.0 * std::log10(sums.power_a / sums.weight) : no_value;
}

double PhaseOf(const PAIR_SUMS& sums) {
  return sums.cross == 0.0 ? no_value : std::arg(sums.cross);
}

double ValidityOf(const PAIR_SUMS& gaps) {
  return gaps.weight > 0.0 ? 0.0 : 1.0;
}

double MeanOf(const PAIR_SUMS& sums) {
  return sums.weight > 0.0 ? sums.cross.real() / sums.weight : no_value;
}

/// From the 1st to the 99th percentile, at least so far from end to end.
COLOUR_SCALE PercentileScale(std::vector<double> values, double smallest_range, COLOUR_RAMP map,
                             const char* name) {
  std::erase_if(values, [](double value) { return std::isnan(value); });
  double low = 0.0;
  double high = 0.0;
  if (!values.empty()) {
    std::sort(values.begin(), values.end());
    const auto last = static_cast<double>(values.size() - 1);
    low = values[static_cast<std::size_t>(0.01 * last)];
    high = values[static_cast<std::size_t>(std::ceil(0.99 * last))];
  }
  const double widening = std::max(0.0, smallest_range - (high - low)) / 2.0;
  low -= widening;
  high += widening;
  return {low, high, map, name, RoundTicks(low, high, (high - low) / 8.0)};
}

COLOUR_SCALE PhaseScale() {
  constexpr double pi = std::numbers::pi;
  return {-pi,
          pi,
          CyclicMap,
          "phase [rad]",
          {{-pi, "-pi"}, {-pi / 2, "-pi/2"}, {0.0, "0"}, {pi / 2, "pi/2"}, {pi, "pi"}}};
}

COLOUR_SCALE CoherenceScale() {
  return {0.0, 1.0, SequentialMap, "coherence", RoundTicks(0.0, 1.0, 0.2)};
}

COLOUR_SCALE MaskScale() {
  return {0.0, 1.0, TwoColourMap, "mask", {{0.25, "not valid"}, {0.75, "valid"}}};
}

}  // namespace

FIGURE AmplitudeFigure(const RASTER_READER& image, const PICTURE_SIZE& wanted) {
  FIGURE figure = MultilookedFigure(image, SumsOf(image), wanted, 1, DecibelsOf);
  figure.title = "Amplitude";
  figure.subtitle = Subtitle(FileName(image), figure);
  figure.scale = PercentileScale(figure.values.Cells(), 1.0, GreyMap, "amplitude [dB]");
  return figure;
}

FIGURE PhaseFigure(const RASTER_READER& image, const PICTURE_SIZE& wanted) {
  RefuseReal(image);
  FIGURE figure = MultilookedFigure(image, SumsOf(image), wanted, 1, PhaseOf);
  figure.title = "Phase";
  figure.subtitle = Subtitle(FileName(image), figure);
  figure.scale = PhaseScale();
  return figure;
}

FIGURE InterferogramFigure(const RASTER_READER& a, const RASTER_READER& b,
                           const PICTURE_SIZE& wanted) {
  RefuseUnfitPair(a, b);
  FIGURE figure = MultilookedFigure(a, SumsOf(a, b), wanted, fringe_box, PhaseOf);
  figure.title = "Interferometric phase";
  figure.subtitle = Subtitle(FileName(a) + " - " + FileName(b), figure);
  figure.scale = PhaseScale();
  return figure;
}

FIGURE CoherenceFigure(const RASTER_READER& a, const RASTER_READER& b, const PICTURE_SIZE& wanted) {
  RefuseUnfitPair(a, b);
  FIGURE figure = MultilookedFigure(a, SumsOf(a, b), wanted, coherence_box,
                                    [](const PAIR_SUMS& sums) { return sums.Coherence(); });
  figure.title = "Coherence";
  figure.subtitle = Subtitle(FileName(a) + " and " + FileName(b), figure);
  figure.scale = CoherenceScale();
  return figure;
}

FIGURE ValueFigure(const RASTER_READER& image, const PICTURE_SIZE& wanted) {
  if (image.IsComplex()) {
    throw std::invalid_argument("pixels are complex in " + image.Path());
  }
  FIGURE figure = MultilookedFigure(image, ValuesOf(image), wanted, 1, MeanOf);
  figure.title = "Values";
  figure.subtitle = Subtitle(FileName(image), figure);
  figure.scale = PercentileScale(figure.values.Cells(), 1e-3, SequentialMap, "value");
  return figure;
}

FIGURE MaskFigure(const RASTER_READER& mask, const PICTURE_SIZE& wanted) {
  if (mask.Type() != PIXEL_TYPE::U_INT_8) {
    throw std::invalid_argument("not one byte a pixel in " + mask.Path());
  }
  FIGURE figure = MultilookedFigure(mask, GapsOf(mask), wanted, 1, ValidityOf);
  figure.title = "Validity mask";
  figure.subtitle = Subtitle(FileName(mask), figure);
  figure.scale = MaskScale();
  return figure;
}
