#include "png/png_command.h"

#include <algorithm>
#include <memory>
#include <string>

#include "picture/raster_figure.h"

namespace {

struct PNG_OPTIONS {
  std::string raster;
  std::string second_raster;
  std::string picture;
  std::string title;
  PICTURE_SIZE size;
};

FIGURE Titled(FIGURE figure, const PNG_OPTIONS& options) {
  if (!options.title.empty()) {
    figure.title = options.title;
  }
  return figure;
}

using ONE_RASTER_FIGURE = FIGURE (*)(const RASTER_READER&, const PICTURE_SIZE&);
using TWO_RASTER_FIGURE = FIGURE (*)(const RASTER_READER&, const RASTER_READER&,
                                     const PICTURE_SIZE&);

void WritePicture(ONE_RASTER_FIGURE make_figure, const PNG_OPTIONS& options) {
  const RASTER_READER raster(options.raster);
  Draw(Titled(make_figure(raster, options.size), options)).WritePng(options.picture);
}

void WritePicture(TWO_RASTER_FIGURE make_figure, const PNG_OPTIONS& options) {
  const RASTER_READER raster(options.raster);
  const RASTER_READER second_raster(options.second_raster);
  Draw(Titled(make_figure(raster, second_raster, options.size), options)).WritePng(options.picture);
}

/// Two figures of the same two rasters.
struct SIDE_BY_SIDE {
  TWO_RASTER_FIGURE left;
  TWO_RASTER_FIGURE right;
};

void WritePicture(const SIDE_BY_SIDE& figures, const PNG_OPTIONS& options) {
  const RASTER_READER raster(options.raster);
  const RASTER_READER second_raster(options.second_raster);
  const auto draw = [&](TWO_RASTER_FIGURE make_figure) {
    return Draw(Titled(make_figure(raster, second_raster, options.size), options));
  };
  Beside(draw(figures.left), draw(figures.right)).WritePng(options.picture);
}

void AddRasters(CLI::App& kind, PNG_OPTIONS& options, ONE_RASTER_FIGURE) {
  kind.add_option("raster", options.raster, "Raster to draw")->required();
}

void AddRasters(CLI::App& kind, PNG_OPTIONS& options, TWO_RASTER_FIGURE) {
  kind.add_option("first", options.raster, "First raster, such as the master")->required();
  kind.add_option("second", options.second_raster, "Second raster of the same size")->required();
}

void AddRasters(CLI::App& kind, PNG_OPTIONS& options, const SIDE_BY_SIDE& figures) {
  AddRasters(kind, options, figures.left);
}

void CheckLooks(const PICTURE_SIZE& size) {
  if (size.looks && std::min(size.looks->range, size.looks->azimuth) < 1) {
    throw CLI::ValidationError("--looks", "must be at least 1");
  }
}

template <class MAKE_FIGURE>
void AddKind(CLI::App& png, const char* name, const char* description, MAKE_FIGURE make_figure) {
  CLI::App& kind = *png.add_subcommand(name, description);
  const auto options = std::make_shared<PNG_OPTIONS>();
  AddRasters(kind, *options, make_figure);
  kind.add_option("picture", options->picture, "PNG file to write")->required();
  kind.add_option("--width", options->size.width, "Width of the image without its axes [pixels]")
      ->check(CLI::Range(1, largest_picture));
  kind.add_option("--height", options->size.height, "Height of the image without its axes [pixels]")
      ->check(CLI::Range(1, largest_picture));
  kind.add_option("--title", options->title, "Title in place of the usual one");
  kind.add_option("--looks", options->size.looks,
                  "Samples and lines, at least, of a cell, which is shown as a square: R,A or one "
                  "number for both");
  kind.callback([options, make_figure] {
    CheckLooks(options->size);
    WritePicture(make_figure, *options);
  });
}

}  // namespace

void AddPngCommand(CLI::App& app) {
  CLI::App& png = *app.add_subcommand("png", "Draw rasters as PNG pictures, averaged to fit");
  png.require_subcommand(1);
  AddKind(png, "amplitude", "RMS amplitude in decibels", AmplitudeFigure);
  AddKind(png, "phase", "Phase of a complex raster", PhaseFigure);
  AddKind(png, "interferogram", "Phase difference of two complex rasters", InterferogramFigure);
  AddKind(png, "coherence", "Coherence of two complex rasters", CoherenceFigure);
  AddKind(png, "pair", "Phase difference and coherence of two complex rasters, side by side",
          SIDE_BY_SIDE{InterferogramFigure, CoherenceFigure});
  AddKind(png, "values", "Values of a real raster, such as shifts", ValueFigure);
  AddKind(png, "mask", "Valid pixels of a mask", MaskFigure);
}
