#include "app/parameter_guide.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::string_view required = "required";

constexpr std::array guides = std::to_array<PARAMETER_GUIDE>({
    {"INSAR_PARAMETER_POOL", required, "INSAR pool: mapping, output size, times of the slave",
     "a writable file"},
    {"log_pp", required, "pool that receives the processing history",
     "a writable file; may be the INSAR pool"},
    {"SLAVE_PARAMETER_POOL", required, "slave pool: PRF, Doppler centroid, imaging mode", "a file"},
    {"SlaveIn", required, "slave SLC image", "a raster of complex int16 or complex binary16"},
    {"MaskIn", "default: all valid", "validity mask of the slave",
     "a raster of one byte a pixel, 0 where invalid"},
    {"MAPPING_FORMAT", "default: the INSAR pool's entry",
     "kind of the coregistration mapping; written into the INSAR pool", "matrix, polynomial"},
    {"RG_MAPPING_FILE", "required for matrix", "shifts along range [samples]",
     "a raster of 32-bit reals"},
    {"AZ_MAPPING_FILE", "required for matrix", "shifts along azimuth [lines]",
     "a raster of 32-bit reals"},
    {"KERNEL_TYPE", required, "shape of the interpolation kernel",
     "cubic_convolution, truncated_sinc_no_weight, truncated_sinc_kaiser_weight"},
    {"KERNEL_COEFFICIENT", required, "Kaiser weight; the other kernels ignore it",
     "a number from 0 on, e.g. 2.5"},
    {"KERNEL_LENGTH", required, "taps of the kernel", "a whole number, e.g. 8"},
    {"KERNEL_SUBPIX_POS", required, "sub-pixel positions of the kernel's table",
     "a whole number from 1 on, e.g. 64"},
    {"n_samples", "default: the INSAR pool's entry", "width of the output [samples]",
     "a whole number from 1 on"},
    {"n_lines", "required with n_samples", "height of the output [lines]",
     "a whole number from 1 on"},
    {"no_of_cpu", "default: PARALLEL", "number of worker threads; sets PARALLEL",
     "a whole number from 1 on"},
    {"SlaveOut", required, "resampled slave", "a file; replaced when it exists"},
    {"MaskOut", "default: none", "mask of the resampled slave", "a file; replaced when it exists"},
    {"PS_MODE", "default: 0", "1 switches the Doppler rate term off", "0, 1"},
    {"pid", "default: resample", "name of the run, in log, status and configuration file names", "",
     true},
    {"status", "default: current directory", "directory of the status files", "", true},
    {"pcf", "default: pcf.<name of the run>", "configuration file", "", true},
    {"lfn", "default: log.<name of the run>", "log file", "", true},
    {"lfl", "default: DEBUG", "level of the log file",
     "TRACE, DEBUG, PARAMETER, INFO, QA_WARNING, WARNING, EXCEPTION, ALARM"},
    {"lsl", "default: INFO", "level of the screen", "as for lfl, and NO_MESSAGE"},
});

}  // namespace

std::span<const PARAMETER_GUIDE> ParameterGuides() {
  return guides;
}

std::string ParameterHint(const std::string& name) {
  const auto* const guide = std::find_if(
      guides.begin(), guides.end(), [&](const PARAMETER_GUIDE& each) { return each.name == name; });
  if (guide == guides.end()) {
    return "";
  }
  std::string hint = std::string(guide->name) + ": " + std::string(guide->meaning) + "\n";
  if (!guide->values.empty()) {
    hint += "value: " + std::string(guide->values) + "\n";
  }
  return hint;
}
