#include "scene/scene_command.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "common/new_files.h"
#include "common/number_checks.h"
#include "scene/scene_options.h"
#include "scene/scene_parameters.h"
#include "scene/scene_rasters.h"

namespace {

void AddImageOptions(CLI::App& command, SCENE_OPTIONS& options) {
  static const std::map<std::string, PIXEL_TYPE> pixel_types = {{"cint16", PIXEL_TYPE::C_INT_16},
                                                                {"cfloat16", PIXEL_TYPE::C_FLT_2}};
  command.add_option("DIR", options.directory, "Folder for the files, made if missing")->required();
  command.add_option("--samples", options.n_samples, "Width of both images")
      ->check(positive_number);
  command.add_option("--lines", options.n_lines, "Height of both images")->check(positive_number);
  command.add_option("--seed", options.seed, "Another scene for every number");
  command.add_option("--pixel-type", options.pixel_type, "cint16 or cfloat16")
      ->transform(CLI::CheckedTransformer(pixel_types))
      ->default_str("cint16");
  command.add_option("--amplitude", options.amplitude, "RMS amplitude of the speckle")
      ->check(positive_number);
  command.add_option("--point-targets", options.point_targets, "Number of point targets a tile")
      ->check(non_negative_number);
  command.add_option("--noise", options.noise, "RMS of each image's noise / RMS of the signal")
      ->check(non_negative_number);
  command
      .add_option("--tile", options.tile,
                  "The signal repeats after so many pixels: a power of two, 0 for the image's "
                  "size, at most 1024")
      ->check(CLI::Range(0, 4096));
}

void AddSpectrumOptions(CLI::App& command, SCENE_OPTIONS& options) {
  command.add_option("--bandwidth", options.bandwidth,
                     "Of the signal, as a part of PRF and range sampling frequency");
  command
      .add_option("--oversampling", options.oversampling,
                  "Pixels of the images for each pulse and range sample")
      ->check(positive_number);
  command.add_option("--doppler", options.doppler, "Doppler centroid amid the slave [Hz]");
  command.add_option("--doppler-range", options.doppler_range, "Its change over the width [Hz]");
  command.add_option("--doppler-azimuth", options.doppler_azimuth,
                     "Its change over the height [Hz]");
  command.add_option("--imaging-mode", options.imaging_mode, "SM, TOPS, ...");
  command.add_flag("--ps-mode", options.ps_mode, "Set PS_MODE: no Doppler rate term");
}

void AddMappingOptions(CLI::App& command, SCENE_OPTIONS& options) {
  command.add_option("--mapping-format", options.mapping_format, "matrix or polynomial")
      ->check(CLI::IsMember({"matrix", "polynomial"}));
  command.add_option("--subsampling-range", options.subsampling_range, "Of the mapping matrices")
      ->check(positive_number);
  command
      .add_option("--subsampling-azimuth", options.subsampling_azimuth, "Of the mapping matrices")
      ->check(positive_number);
  command.add_option("--shift-range", options.shift_range, "From master to slave [samples]");
  command.add_option("--shift-azimuth", options.shift_azimuth, "From master to slave [lines]");
  command.add_option("--warp", options.warp, "Largest departure from the shifts [pixels]");
}

void AddKernelOptions(CLI::App& command, KERNEL_OPTIONS& kernel) {
  command.add_option("--kernel-type", kernel.type, "KERNEL_TYPE of the configuration");
  command.add_option("--kernel-coefficient", kernel.coefficient, "KERNEL_COEFFICIENT");
  command.add_option("--kernel-length", kernel.length, "KERNEL_LENGTH");
  command.add_option("--kernel-subpix-pos", kernel.subpix_positions, "KERNEL_SUBPIX_POS");
}

/// The smallest power of two that holds the image, within limits of memory and use.
int ChooseTile(const SCENE_OPTIONS& options) {
  const auto side = static_cast<unsigned>(std::max(options.n_samples, options.n_lines));
  return static_cast<int>(std::bit_ceil(std::clamp(side, 64U, 1024U)));
}

void MakeScene(SCENE_OPTIONS options) {
  if (options.tile == 0) {
    options.tile = ChooseTile(options);
  }
  std::filesystem::create_directories(options.directory);
  NEW_FILES files(options.directory);
  options.directory = files.Directory();
  WriteSceneRasters(options);
  WriteSceneParameters(options);
  files.Finish();
}

}  // namespace

void AddSceneCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand(
      "scene",
      "Make a synthetic master/slave pair with a known answer: the slave, perfectly resampled, is "
      "the master");
  command->option_defaults()->always_capture_default();
  const auto options = std::make_shared<SCENE_OPTIONS>();
  AddImageOptions(*command, *options);
  AddSpectrumOptions(*command, *options);
  AddMappingOptions(*command, *options);
  AddKernelOptions(*command, options->kernel);
  command->callback([options] { MakeScene(*options); });
}
