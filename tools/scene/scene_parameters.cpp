#include "scene/scene_parameters.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "common/new_files.h"
#include "common/pool_values.h"
#include "pool/parameter_pool_read_write_change.h"
#include "scene/scene_doppler.h"
#include "scene/scene_warp.h"

namespace {

using POOL = PARAMETER_POOL_READ_WRITE_CHANGE;

POOL NewPool(const SCENE_OPTIONS& options, const char* name) {
  const std::string path = options.directory + "/" + name;
  WriteWholeFile(path, "# Synthetic scene, seed " + std::to_string(options.seed) + "\n");
  return POOL(path.c_str());
}

void WriteInsarPool(const SCENE_OPTIONS& options) {
  const SCENE_WARP warp(options);
  POOL pool = NewPool(options, "insar.pool");
  pool.Write("n_samples", options.n_samples);
  pool.Write("n_lines", options.n_lines);
  pool.Write("mapping_format", STRING(options.mapping_format.c_str()));
  pool.Write("shift_matrices_subsampling_rg", options.subsampling_range);
  pool.Write("shift_matrices_subsampling_az", options.subsampling_azimuth);
  pool.Write("respl_poly_rg", VectorOf(warp.Range()),
             {" shifts: 1, line, sample, sample * line, line^2, sample^2"});
  pool.Write("respl_poly_az", VectorOf(warp.Azimuth()));
  pool.Write("slave_first_rg_time", SCENE_DOPPLER::first_range_time);
  pool.Write("slave_first_az_time", SCENE_DOPPLER::first_azimuth_time);
  pool.Update();
}

void WriteSlavePool(const SCENE_OPTIONS& options) {
  const SCENE_DOPPLER doppler(options);
  const std::vector<double> azimuth_times = doppler.AzimuthTimes();
  std::vector<std::vector<double>> coefficients(azimuth_times.size());
  std::transform(azimuth_times.begin(), azimuth_times.end(), coefficients.begin(),
                 [&](double time) { return doppler.Coefficients(time); });
  POOL pool = NewPool(options, "slave.pool");
  pool.Write("imaging_mode", STRING(options.imaging_mode.c_str()));
  pool.Write("prf", SCENE_DOPPLER::prf);
  pool.Write("range_sampling_frequency", SCENE_DOPPLER::range_sampling_frequency);
  pool.Write("oversampling", options.oversampling);
  pool.Write("fdc_poly_az_time", VectorOf(azimuth_times));
  pool.Write("fdc_poly_rg_ref_time",
             VectorOf(std::vector<double>(azimuth_times.size(), doppler.ReferenceTime())));
  pool.Write("fdc_poly_coeff", MatrixOf(coefficients));
  pool.Update();
}

void WriteConfiguration(const SCENE_OPTIONS& options) {
  std::ostringstream text;
  text.precision(17);
  text << "INSAR_PARAMETER_POOL insar.pool\n"
       << "log_pp insar.pool\n"
       << "SLAVE_PARAMETER_POOL slave.pool\n"
       << "SlaveIn slave.ras\n"
       << "MaskIn slave_mask.ras\n"
       << "RG_MAPPING_FILE rg_map.ras\n"
       << "AZ_MAPPING_FILE az_map.ras\n"
       << "KERNEL_TYPE " << options.kernel.type << "\n"
       << "KERNEL_COEFFICIENT " << options.kernel.coefficient << "\n"
       << "KERNEL_LENGTH " << options.kernel.length << "\n"
       << "KERNEL_SUBPIX_POS " << options.kernel.subpix_positions << "\n"
       << "SlaveOut resampled.ras\n"
       << "MaskOut resampled_mask.ras\n"
       << "PS_MODE " << (options.ps_mode ? 1 : 0) << "\n";
  WriteWholeFile(options.directory + "/pcf.resample", text.str());
}

}  // namespace

void WriteSceneParameters(const SCENE_OPTIONS& options) {
  WriteInsarPool(options);
  WriteSlavePool(options);
  WriteConfiguration(options);
}
