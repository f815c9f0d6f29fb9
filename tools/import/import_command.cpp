#include "import/import_command.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/same_file.h"
#include "common/encoding_report.h"
#include "common/new_files.h"
#include "common/progress_bar.h"
#include "common/scale_option.h"
#include "import/raster_import.h"
#include "pool/parameter_pool_read_write_change.h"

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

void RecordScale(const std::string& path, double scale) {
  if (!std::filesystem::exists(path)) {
    WriteWholeFile(path, "# Made by slctool import\n");
  }
  PARAMETER_POOL_READ_WRITE_CHANGE pool(path.c_str());
  pool.Write("pixel_scale", scale);
  pool.Update();
}

void CheckPool(const std::string& pool, const IMPORT_OPTIONS& options) {
  for (const std::string& raster : {options.source, options.target, options.mask}) {
    if (!raster.empty() && IsSamePath(pool, raster)) {
      throw std::invalid_argument(pool + " is a raster and can not be the pool as well");
    }
  }
}

void Import(const IMPORT_OPTIONS& options, const std::string& pool) {
  if (!pool.empty()) {
    CheckPool(pool, options);
  }
  PROGRESS_BAR bar;
  const IMPORT_RESULT result = ImportRaster(options, [&bar](double part) { bar.Show(part); });
  if (!pool.empty()) {
    RecordScale(pool, result.scale);
  }
  std::cout << "pixel type: " << DataTypeOf(result.type).Name() << "\n"
            << "width: " << result.width << "\n"
            << "height: " << result.height << "\n";
  PrintEncoding(result.scale, result.counts,
                result.width * result.height * (HoldsPairs(result.type) ? 2 : 1));
  std::cout << "no data: " << result.no_data << "\n"
            << "not finite: " << result.not_finite << "\n";
}

}  // namespace

void AddImportCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand("import", "Make a raster of any file that GDAL reads");
  const auto options = std::make_shared<IMPORT_OPTIONS>();
  const auto type = std::make_shared<std::string>();
  const auto window = std::make_shared<std::vector<int>>();
  const auto pool = std::make_shared<std::string>();
  command->add_option("SRC", options->source, "File or GDAL's name of a raster in it")->required();
  command->add_option("DST", options->target, "Raster file to make")->required();
  command
      ->add_option("--type", *type,
                   "Pixel type; without it c_int_16 or c_flt_2 of complex pixels, of real ones the "
                   "smallest that holds all values")
      ->check(CLI::IsMember(NumberTypeNames()));
  AddScaleOption(*command, options->scale);
  command->add_option("--pool", *pool, "Record the scale in this pool as pixel_scale");
  command->add_option("--mask-out", options->mask,
                      "Mask to make: 0 where SRC has no data or no finite number");
  command->add_flag("--transpose", options->transpose,
                    "Columns of SRC become lines, for files whose rows are range");
  const auto flip = std::make_shared<std::vector<std::string>>();
  command
      ->add_option("--flip", *flip,
                   "samples, lines or both: the last one comes first, after transposing")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->check(CLI::IsMember({"samples", "lines"}));
  command
      ->add_option("--band", options->bands,
                   "Band of SRC; two, as in 1,2, for real and imaginary part")
      ->delimiter(',')
      ->expected(1, 2)
      ->allow_extra_args(false);
  command->add_option("--window", *window, "Take this part alone: X,Y,WIDTH,HEIGHT")
      ->delimiter(',')
      ->expected(4);
  command->callback([options, type, window, pool, flip] {
    if (!type->empty()) {
      options->type = TypeNamed(*type);
    }
    if (!window->empty()) {
      options->window = {(*window)[0], (*window)[1], (*window)[2], (*window)[3]};
    }
    for (const std::string& axis : *flip) {
      (axis == "lines" ? options->flip_lines : options->flip_samples) = true;
    }
    Import(*options, *pool);
  });
}
