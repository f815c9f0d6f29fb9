// The commands that a program without GDAL has by name only.

#include <stdexcept>
#include <string>

#include "export/export_command.h"
#include "import/import_command.h"
#include "product/product_command.h"

namespace {

void AddMissingCommand(CLI::App& app, const std::string& name) {
  CLI::App* command = app.add_subcommand(name, "Not in this build, which is without GDAL");
  command->allow_extras();
  command->callback([name] {
    throw std::runtime_error("this slctool was built without GDAL, which " + name +
                             " needs (Debian: libgdal-dev and libhdf5-dev)");
  });
}

}  // namespace

void AddImportCommand(CLI::App& app) {
  AddMissingCommand(app, "import");
}

void AddExportCommand(CLI::App& app) {
  AddMissingCommand(app, "export");
}

void AddProductCommand(CLI::App& app) {
  AddMissingCommand(app, "product");
}
