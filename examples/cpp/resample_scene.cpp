// Resamples a scene of `slctool scene` in this process: resample_scene FOLDER OUTPUT
#include <iostream>
#include <string>

#include "app/resample_thread.h"
#include "core/core_variant.h"
#include "mapping/mapping_matrix.h"

const LOGGING_USER log_of_failures("", "resample_scene", LOGGING_LEVEL_T::ALARM,
                                   LOGGING_LEVEL_T::ALARM);

void ResampleScene(const std::string& folder, const char* output_path) {
  MEM_MGR slave;  // the files' pixels in memory: slave.Rows<PIXEL>()[line][sample]
  slave.Map((folder + "/slave.ras").c_str(), 0);

  PARAMETER_POOL insar((folder + "/insar.pool").c_str());
  int samples = 0, lines = 0, step_rg = 0, step_az = 0;
  insar.Read("n_samples", samples);
  insar.Read("n_lines", lines);
  insar.Read("shift_matrices_subsampling_rg", step_rg);
  insar.Read("shift_matrices_subsampling_az", step_az);
  const MAPPING_MATRIX mapping((folder + "/rg_map.ras").c_str(), (folder + "/az_map.ras").c_str(),
                               step_rg, step_az);

  PARAMETER_POOL slave_pool((folder + "/slave.pool").c_str());
  DOPPLER_CENTROID_MODEL doppler;
  doppler.Setup(slave_pool);
  insar.Read("slave_first_rg_time", doppler.range_start_time);
  insar.Read("slave_first_az_time", doppler.azimuth_start_time);
  ZARVO::ImageMode mode;
  slave_pool.ReadEnumeration("imaging_mode", mode);

  BASIC::TYPES::KernelType type;
  type.Assign("truncated_sinc_kaiser_weight");
  INTERPOLATION_KERNEL kernel;
  kernel.InitKernel(type, 16, 4096, 2.5F);

  MEM_MGR output;
  output.Create(output_path, 0, 0, samples - 1, lines - 1, slave.PixelType());
  RESAMPLE_THR_ARG work;  // several workers would take a block of lines each, see app/threads.h
  work.block = {0U, static_cast<unsigned>(lines)};
  work.Set({.input_slave = &slave,
            .input_width = static_cast<int>(slave.Width()),
            .input_height = static_cast<int>(slave.Height()),
            .output_slave = &output,
            .output_width = samples,
            .output_height = lines,
            .core = &ChooseCoreVariant(),
            .mapping = &mapping,
            .kernel = &kernel,
            .doppler = &doppler,
            .imaging_mode = &mode});
  ResampleThread(work);
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
