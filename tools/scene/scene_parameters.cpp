#include "scene/scene_parameters.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <span>
#include <system_error>
#include <vector>

#include "scene/scene_doppler.h"
#include "scene/scene_warp.h"

namespace {

/// A text file of the scene.
class TEXT_FILE {
 public:
  explicit TEXT_FILE(const std::string& path) : path_(path), stream_(path) {
    stream_.precision(17);
  }

  std::ostream& Stream() { return stream_; }

  /// Throws std::system_error when something has not reached the file.
  void Close() {
    stream_.close();
    if (!stream_) {
      throw std::system_error(errno, std::generic_category(), path_);
    }
  }

 private:
  std::string path_;
  std::ofstream stream_;
};

/// A parameter pool: lines "key type value", vectors and matrices in braces.
class SCENE_POOL : public TEXT_FILE {
 public:
  using TEXT_FILE::TEXT_FILE;

  void Write(const char* key, int value) { Stream() << key << " INT_32 " << value << "\n"; }
  void Write(const char* key, double value) { Stream() << key << " FLT_15 " << value << "\n"; }
  void Write(const char* key, const std::string& value) {
    Stream() << key << " STR \"" << value << "\"\n";
  }

  void Write(const char* key, std::span<const double> values) {
    Stream() << key << " FLT_15_V 0 " << values.size() << "\n";
    WriteBlock(values);
  }

  /// All rows have the same length.
  void Write(const char* key, const std::vector<std::vector<double>>& rows) {
    Stream() << key << " FLT_15_M 0 " << rows.size() << " 0 " << rows.front().size() << "\n{\n";
    for (const std::vector<double>& row : rows) {
      WriteBlock(row);
    }
    Stream() << "}\n";
  }

 private:
  void WriteBlock(std::span<const double> values) {
    Stream() << "{\n";
    for (const double value : values) {
      Stream() << "  " << value << "\n";
    }
    Stream() << "}\n";
  }
};

void WriteInsarPool(const SCENE_OPTIONS& options) {
  const SCENE_WARP warp(options);
  SCENE_POOL pool(options.directory + "/insar.pool");
  pool.Stream() << "# Synthetic scene, seed " << options.seed << "\n";
  pool.Write("n_samples", options.n_samples);
  pool.Write("n_lines", options.n_lines);
  pool.Write("mapping_format", options.mapping_format);
  pool.Write("shift_matrices_subsampling_rg", options.subsampling_range);
  pool.Write("shift_matrices_subsampling_az", options.subsampling_azimuth);
  pool.Stream() << "# shifts: 1, line, sample, sample * line, line^2, sample^2\n";
  pool.Write("respl_poly_rg", warp.Range());
  pool.Write("respl_poly_az", warp.Azimuth());
  pool.Write("slave_first_rg_time", SCENE_DOPPLER::first_range_time);
  pool.Write("slave_first_az_time", SCENE_DOPPLER::first_azimuth_time);
  pool.Close();
}

void WriteSlavePool(const SCENE_OPTIONS& options) {
  const SCENE_DOPPLER doppler(options);
  const std::vector<double> azimuth_times = doppler.AzimuthTimes();
  std::vector<std::vector<double>> coefficients(azimuth_times.size());
  std::transform(azimuth_times.begin(), azimuth_times.end(), coefficients.begin(),
                 [&](double time) { return doppler.Coefficients(time); });
  SCENE_POOL pool(options.directory + "/slave.pool");
  pool.Stream() << "# Synthetic scene, seed " << options.seed << "\n";
  pool.Write("imaging_mode", options.imaging_mode);
  pool.Write("prf", SCENE_DOPPLER::prf);
  pool.Write("range_sampling_frequency", SCENE_DOPPLER::range_sampling_frequency);
  pool.Write("oversampling", options.oversampling);
  pool.Write("fdc_poly_az_time", azimuth_times);
  pool.Write("fdc_poly_rg_ref_time",
             std::vector<double>(azimuth_times.size(), doppler.ReferenceTime()));
  pool.Write("fdc_poly_coeff", coefficients);
  pool.Close();
}

void WriteConfiguration(const SCENE_OPTIONS& options) {
  TEXT_FILE file(options.directory + "/pcf.resample");
  file.Stream() << "INSAR_PARAMETER_POOL insar.pool\n"
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
  file.Close();
}

}  // namespace

void WriteSceneParameters(const SCENE_OPTIONS& options) {
  WriteInsarPool(options);
  WriteSlavePool(options);
  WriteConfiguration(options);
}
