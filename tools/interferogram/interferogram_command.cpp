#include "interferogram/interferogram_command.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/same_file.h"
#include "common/new_files.h"
#include "common/progress_bar.h"
#include "gdal/gdal_copy.h"
#include "interferogram/interferogram.h"

namespace {

namespace fs = std::filesystem;

struct INTERFEROGRAM_OPTIONS {
  std::string master;
  std::string resampled;
  std::string out;
  std::vector<std::string> masks;
  RANGE_AZIMUTH<int> looks;
  std::vector<std::string> creation_options;
};

constexpr const char* own_extension = ".ras";
constexpr const char* endings[] = {"", "_coherence", "_master", "_slave"};

fs::path NameOf(const fs::path& out, const char* ending, const fs::path& extension) {
  fs::path name = out.stem();
  return name.concat(ending).concat(extension.string());
}

INTERFEROGRAM_PATHS PathsIn(const NEW_FILES& files, const fs::path& out) {
  const auto path = [&](const char* ending) {
    return files.PathOf(NameOf(out, ending, own_extension));
  };
  return {path(endings[0]), path(endings[1]), path(endings[2]), path(endings[3])};
}

void RefuseToReplaceInputs(const INTERFEROGRAM_OPTIONS& options) {
  const fs::path out(options.out);
  std::vector<std::string> inputs = options.masks;
  inputs.insert(inputs.end(), {options.master, options.resampled});
  for (const char* ending : endings) {
    const std::string path = out.parent_path() / NameOf(out, ending, out.extension());
    for (const std::string& input : inputs) {
      if (IsSameFile(path.c_str(), input.c_str())) {
        throw std::invalid_argument(path + " is one of the inputs");
      }
    }
  }
}

/// Copies rasters into the format that goes with the extension of `out`.
void Convert(const NEW_FILES& rasters, const INTERFEROGRAM_OPTIONS& options) {
  const fs::path out(options.out);
  NEW_FILES converted(out.parent_path());
  for (const char* ending : endings) {
    const RASTER_READER raster(rasters.PathOf(NameOf(out, ending, own_extension)));
    WriteGdalCopy(
        raster, converted.PathOf(NameOf(out, ending, out.extension())),
        {.driver = {}, .creation_options = options.creation_options, .type = {}, .mask = {}},
        [](double) {});
  }
  converted.Finish();
}

void Make(const INTERFEROGRAM_OPTIONS& options) {
  if (std::min(options.looks.range, options.looks.azimuth) < 1) {
    throw CLI::ValidationError("--looks", "must be at least 1");
  }
  const RASTER_READER master(options.master);
  const RASTER_READER resampled(options.resampled);
  for (const RASTER_READER* image : {&master, &resampled}) {
    if (!image->IsComplex()) {
      throw std::invalid_argument("pixels are not complex in " + image->Path());
    }
  }
  std::list<RASTER_READER> mask_readers;
  std::vector<const RASTER_READER*> masks;
  for (const std::string& path : options.masks) {
    masks.push_back(&mask_readers.emplace_back(path));
  }
  const PAIR_LINES pair(master, resampled, masks);
  RefuseToReplaceInputs(options);
  const fs::path out(options.out);
  if (out.extension() != own_extension) {
    CheckGdalFormat(out, "CFloat32");
  }

  NEW_FILES files(out.parent_path());
  {
    PROGRESS_BAR bar;
    MakeInterferogram(pair, options.looks, PathsIn(files, out),
                      [&bar](double part) { bar.Show(part); });
  }
  if (out.extension() == own_extension) {
    files.Finish();
  } else {
    Convert(files, options);
  }
  std::cout << "width: " << pair.Width() / options.looks.range << "\n"
            << "height: " << pair.Height() / options.looks.azimuth << "\n";
}

}  // namespace

void AddInterferogramCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "interferogram", "Make interferogram, coherence and amplitudes of two rasters of one size");
  const auto options = std::make_shared<INTERFEROGRAM_OPTIONS>();
  command->add_option("MASTER", options->master, "First raster")->required();
  command->add_option("RESAMPLED", options->resampled, "Second raster, whose conjugate is taken")
      ->required();
  command
      ->add_option("OUT", options->out,
                   "Interferogram to write; its ending, .ras or one of GDAL's, tells the format. "
                   "Coherence and amplitudes get its name with _coherence, _master and _slave")
      ->required();
  command
      ->add_option("--looks", options->looks,
                   "Samples and lines of a cell, R,A or one number for both")
      ->required();
  command
      ->add_option("--mask", options->masks,
                   "Only pixels count where this raster is not 0; more than one may be given")
      ->allow_extra_args(false);
  command
      ->add_option("--creation-option", options->creation_options,
                   "NAME=VALUE for the GDAL driver; may be given more than once")
      ->allow_extra_args(false);
  command->callback([options] { Make(*options); });
}
