#include "import/import_command.h"

#include <iostream>
#include <map>
#include <memory>

#include "common/progress_bar.h"
#include "import/raster_import.h"

namespace {

/// All types that hold numbers, by their names.
std::map<std::string, PIXEL_TYPE> NumberTypes() {
  std::map<std::string, PIXEL_TYPE> types;
  for (int code = 1; code < static_cast<int>(PIXEL_TYPE::RGB); ++code) {
    const auto type = static_cast<PIXEL_TYPE>(code);
    types[DataTypeOf(type).Name()] = type;
  }
  return types;
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
  const auto type = std::make_shared<PIXEL_TYPE>();
  const auto window = std::make_shared<std::vector<int>>();
  command->add_option("SRC", options->source, "File or GDAL's name of a raster in it")->required();
  command->add_option("DST", options->target, "Raster file to make")->required();
  command->add_option("--type", *type, "Pixel type; without it one that holds all values of SRC")
      ->transform(CLI::CheckedTransformer(NumberTypes()));
  command->add_option("--scale", options->scale, "Multiply all values by this");
  command
      ->add_option("--band", options->bands,
                   "Band of SRC; two, as in 1,2, for real and imaginary part")
      ->delimiter(',')
      ->expected(1, 2);
  command->add_option("--window", *window, "Take this part alone: X,Y,WIDTH,HEIGHT")
      ->delimiter(',')
      ->expected(4);
  command->callback([command, options, type, window] {
    if (command->count("--type") > 0) {
      options->type = *type;
    }
    if (!window->empty()) {
      options->window = {(*window)[0], (*window)[1], (*window)[2], (*window)[3]};
    }
    Import(*options);
  });
}
