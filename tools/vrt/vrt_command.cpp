#include "vrt/vrt_command.h"

#include <iostream>
#include <memory>
#include <string>

#include "common/new_files.h"
#include "vrt/vrt_text.h"

namespace {

void WriteVrt(const std::string& raster) {
  const std::string path = raster + ".vrt";
  WriteWholeFile(path, VrtText(raster));
  std::cout << path << "\n";
}

}  // namespace

void AddVrtCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "vrt", "Write FILE.vrt, by which GDAL, QGIS and rasterio open a raster where it lies");
  const auto raster = std::make_shared<std::string>();
  command->add_option("FILE", *raster, "Raster file")->required();
  command->callback([raster] { WriteVrt(*raster); });
}
