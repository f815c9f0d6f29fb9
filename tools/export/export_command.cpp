#include "export/export_command.h"

#include <memory>
#include <stdexcept>
#include <string>

#include "base/same_file.h"
#include "common/progress_bar.h"
#include "common/scale_option.h"
#include "gdal/gdal_copy.h"

namespace {

struct EXPORT_OPTIONS {
  std::string raster;
  std::string target;
  GDAL_COPY_OPTIONS copy;
};

void Export(const EXPORT_OPTIONS& options) {
  if (IsSameFile(options.raster.c_str(), options.target.c_str())) {
    throw std::invalid_argument(options.target + " is the raster itself");
  }
  const RASTER_READER raster(options.raster);
  PROGRESS_BAR bar;
  WriteGdalCopy(raster, options.target, options.copy, [&bar](double part) { bar.Show(part); });
}

}  // namespace

void AddExportCommand(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("export", "Write a raster as a GeoTIFF or in any other format of GDAL");
  const auto options = std::make_shared<EXPORT_OPTIONS>();
  command->add_option("FILE", options->raster, "Raster file")->required();
  command->add_option("OUT", options->target, "File to write; its ending tells the format")
      ->required();
  command->add_option("--driver", options->copy.driver,
                      "GDAL's name of the format, in place of the ending");
  command
      ->add_option("--creation-option", options->copy.creation_options,
                   "NAME=VALUE for the GDAL driver; may be given more than once")
      ->allow_extra_args(false);
  command->add_option("--type", options->copy.type,
                      "GDAL's name of a data type, such as CFloat32; usually one that holds all "
                      "numbers as they are");
  AddScaleOption(*command, options->copy.scale);
  command->add_option("--mask", options->copy.mask,
                      "Mask raster: where it is 0 the file has no data");
  command->callback([options] { Export(*options); });
}
