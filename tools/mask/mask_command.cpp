#include "mask/mask_command.h"

#include <cstdint>
#include <iostream>
#include <memory>

#include "mask/validity_mask.h"

void AddMaskCommand(CLI::App& app) {
  CLI::App* command =
      app.add_subcommand("mask", "Make a mask of the values of rasters, or of other masks");
  const auto options = std::make_shared<VALIDITY_OPTIONS>();
  command->add_option("OUT", options->mask, "Mask to make")->required();
  command->add_option("FILE", options->files, "Rasters of one size, masks among them")
      ->required()
      ->expected(1, -1);
  CLI::Option* invalid =
      command
          ->add_option("--invalid", options->invalid,
                       "Value of pixels without data, 0 unless given; may be given more than once")
          ->allow_extra_args(false);
  const auto finite = std::make_shared<bool>(false);
  command->add_flag("--finite", *finite, "Every finite value is valid, 0 as well")
      ->excludes(invalid);
  command->add_flag("--any", options->any, "One valid pixel among the files is enough");
  command->add_flag("--invert", options->invert, "0 where it would be 1, 1 where it would be 0");
  command->callback([options, finite] {
    if (*finite) {
      options->invalid.clear();
    }
    const std::int64_t valid = WriteValidityMask(*options);
    std::cout << "valid pixels: " << valid << "\n";
  });
}
