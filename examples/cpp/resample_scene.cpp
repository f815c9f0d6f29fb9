// Resamples a scene of `slctool scene` in this process: resample_scene FOLDER OUTPUT
#include <iostream>
#include <string>

#include "app/input_setup.h"
#include "app/resampling.h"

using BASIC::TYPES::KernelType;
using BASIC::TYPES::MappingFormatType;

const LOGGING_USER log_of_failures("", "resample_scene", LOGGING_LEVEL_T::ALARM,
                                   LOGGING_LEVEL_T::ALARM);

void ResampleScene(const std::string& folder, const char* output_path) {
  PARAMETER_POOL insar((folder + "/insar.pool").c_str());
  const MAPPING_PARAMETERS mapping = {.format = MappingFormatType(MappingFormatType::MATRIX),
                                      .rg_file = folder + "/rg_map.ras",
                                      .az_file = folder + "/az_map.ras"};
  const KERNEL_PARAMETERS kernel = {.type = KernelType(KernelType::TRUNCATED_SINC_KAISER_WEIGHT),
                                    .coefficient = 2.5,
                                    .length = 16,
                                    .subpix_positions = 4096};

  RESAMPLE_INPUT input;  // its parts can come from memory too, see core/resample_input.h
  MapSlave(folder + "/slave.ras", input);
  BuildKernel(kernel, input);
  OpenMapping(mapping, insar, input);
  ReadAnnotation(folder + "/slave.pool", insar, input);
  insar.Read("n_samples", input.n_samples);
  insar.Read("n_lines", input.n_lines);
  RESAMPLE_OUTPUT output;  // the file's pixels in memory: output.slave.Rows<PIXEL>()[line][sample]
  output.slave.Create(output_path, 0, 0, input.n_samples - 1, input.n_lines - 1,
                      input.slave.PixelType());
  Resample(input, output);
}

int main(int argc, char** argv) try {
  if (argc != 3) {
    throw "usage: resample_scene FOLDER OUTPUT";
  }
  ResampleScene(argv[1], argv[2]);
} catch (const ERROR_EXCEPTION& error) {  // the log has told the details
  std::cerr << error.what() << "\n";
  return 1;
} catch (const char* text) {
  std::cerr << text << "\n";
  return 1;
}
