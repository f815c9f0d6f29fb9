#include "png/png_command.h"

#include <memory>
#include <string>

#include "png/raster_figure.h"

namespace {

struct PNG_OPTIONS {
  std::string raster;
  std::string second_raster;
  std::string picture;
  std::string title;
  PICTURE_SIZE size;
};

void WritePicture(FIGURE figure, const PNG_OPTIONS& options) {
  if (!options.title.empty()) {
    figure.title = options.title;
  }
  Draw(figure).WritePng(options.picture);
}

using ONE_RASTER_FIGURE = FIGURE (*)(const RASTER_READER&, const PICTURE_SIZE&);
using TWO_RASTER_FIGURE = FIGURE (*)(const RASTER_READER&, const RASTER_READER&,
                                     const PICTURE_SIZE&);

void WritePicture(ONE_RASTER_FIGURE make_figure, const PNG_OPTIONS& options) {
  const RASTER_READER raster(options.raster);
  WritePicture(make_figure(raster, options.size), options);
}

void WritePicture(TWO_RASTER_FIGURE make_figure, const PNG_OPTIONS& options) {
  const RASTER_READER raster(options.raster);
  const RASTER_READER second_raster(options.second_raster);
  WritePicture(make_figure(raster, second_raster, options.size), options);
}

void AddRasters(CLI::App& kind, PNG_OPTIONS& options, ONE_RASTER_FIGURE) {
  kind.add_option("raster", options.raster, "Raster to draw")->required();
}

void AddRasters(CLI::App& kind, PNG_OPTIONS& options, TWO_RASTER_FIGURE) {
  kind.add_option("first", options.raster, "First raster, such as the master")->required();
  kind.add_option("second", options.second_raster, "Second raster of the same size")->required();
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
  kind.callback([options, make_figure] { WritePicture(make_figure, *options); });
}

}  // namespace

void AddPngCommand(CLI::App& app) {
  CLI::App& png = *app.add_subcommand("png", "Draw rasters as PNG pictures, averaged to fit");
  png.require_subcommand(1);
  AddKind(png, "amplitude", "RMS amplitude in decibels", AmplitudeFigure);
  AddKind(png, "phase", "Phase of a complex raster", PhaseFigure);
  AddKind(png, "interferogram", "Phase difference of two complex rasters", InterferogramFigure);
  AddKind(png, "coherence", "Coherence of two complex rasters", CoherenceFigure);
  AddKind(png, "values", "Values of a real raster, such as shifts", ValueFigure);
  AddKind(png, "mask", "Valid pixels of a mask", MaskFigure);
}
