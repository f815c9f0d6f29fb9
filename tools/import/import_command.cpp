#include "import/import_command.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "common/progress_bar.h"
#include "import/raster_import.h"

namespace {

/// All types that hold numbers.
std::vector<std::string> NumberTypeNames() {
  std::vector<std::string> names;
  for (int code = 1; code < static_cast<int>(PIXEL_TYPE::RGB); ++code) {
    names.emplace_back(DataTypeOf(static_cast<PIXEL_TYPE>(code)).Name());
  }
  return names;
}

PIXEL_TYPE TypeNamed(const std::string& name) {
  BASIC::TYPES::DataType type;
  type.Assign(name.c_str());
  return PixelTypeOf(type);
}

void Import(const IMPORT_OPTIONS& options) {
  PROGRESS_BAR bar;
  const IMPORT_RESULT result = ImportRaster(options, [&bar](double part) { bar.Show(part); });
  std::cout << "pixel type: " << DataTypeOf(result.type).Name() << "\n"
            << "width: " << result.window.width << "\n"
            << "height: " << result.window.height << "\n"
            << "clipped: " << result.counts.clipped << "\n"
            << "rounded: " << result.counts.rounded << "\n"
            << "rounded to zero: " << result.counts.vanished << "\n"
            << "not a number: " << result.counts.not_a_number << "\n";
}

}  // namespace

void AddImportCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand("import", "Make a raster of any file that GDAL reads");
  const auto options = std::make_shared<IMPORT_OPTIONS>();
  const auto type = std::make_shared<std::string>();
  const auto window = std::make_shared<std::vector<int>>();
  command->add_option("SRC", options->source, "File or GDAL's name of a raster in it")->required();
  command->add_option("DST", options->target, "Raster file to make")->required();
  command->add_option("--type", *type, "Pixel type; without it one that holds all values of SRC")
      ->check(CLI::IsMember(NumberTypeNames()));
  command->add_option("--scale", options->scale, "Multiply all values by this");
  command
      ->add_option("--band", options->bands,
                   "Band of SRC; two, as in 1,2, for real and imaginary part")
      ->delimiter(',')
      ->expected(1, 2)
      ->allow_extra_args(false);
  command->add_option("--window", *window, "Take this part alone: X,Y,WIDTH,HEIGHT")
      ->delimiter(',')
      ->expected(4);
  command->callback([options, type, window] {
    if (!type->empty()) {
      options->type = TypeNamed(*type);
    }
    if (!window->empty()) {
      options->window = {(*window)[0], (*window)[1], (*window)[2], (*window)[3]};
    }
    Import(*options);
  });
}
