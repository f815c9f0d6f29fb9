#include "export/export_command.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/same_file.h"
#include "common/progress_bar.h"
#include "gdal/gdal_copy.h"

namespace {

struct EXPORT_OPTIONS {
  std::string raster;
  std::string target;
  std::string driver;
  std::vector<std::string> creation_options;
};

void Export(const EXPORT_OPTIONS& options) {
  if (IsSameFile(options.raster.c_str(), options.target.c_str())) {
    throw std::invalid_argument(options.target + " is the raster itself");
  }
  const RASTER_READER raster(options.raster);
  PROGRESS_BAR bar;
  WriteGdalCopy(raster, options.target, options.driver, options.creation_options,
                [&bar](double part) { bar.Show(part); });
}

}  // namespace

void AddExportCommand(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("export", "Write a raster as a GeoTIFF or in any other format of GDAL");
  const auto options = std::make_shared<EXPORT_OPTIONS>();
  command->add_option("FILE", options->raster, "Raster file")->required();
  command->add_option("OUT", options->target, "File to write; its ending tells the format")
      ->required();
  command->add_option("--driver", options->driver,
                      "GDAL's name of the format, in place of the ending");
  command
      ->add_option("--creation-option", options->creation_options,
                   "NAME=VALUE for the GDAL driver; may be given more than once")
      ->allow_extra_args(false);
  command->callback([options] { Export(*options); });
}
