#include "info/info_command.h"

#include <iostream>
#include <memory>
#include <string>

#include "info/raster_report.h"

void AddInfoCommand(CLI::App& app) {
  CLI::App& info = *app.add_subcommand("info", "Tell header, pixel type and values of a raster");
  const auto path = std::make_shared<std::string>();
  info.add_option("raster", *path, "Raster file")->required();
  info.callback([path] { WriteRasterReport(*path, std::cout); });
}
