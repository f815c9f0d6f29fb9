#include "app/parameter_table.h"

#include <algorithm>
#include <cstdlib>

#include "interpolation/kernel_shape.h"
#include "system/c_locale.h"

namespace {

using enum PARAMETER_KIND;
using enum PARAMETER_SOURCE;

std::string KernelNames() {
  std::string names;
  for (const KERNEL_SHAPE& shape : kernel_shapes) {
    names.append(names.empty() ? "" : ", ").append(shape.name);
  }
  return names;
}

std::vector<PARAMETER_ENTRY> MakeTable() {
  const std::string required = "required";
  const std::string count = "a whole number from 1 on";
  return {
      {"INSAR_PARAMETER_POOL", POOL, required, ANY,
       "INSAR pool: mapping, output size, times of the slave", "a writable file"},
      {"log_pp", POOL, required, ANY, "pool that receives the processing history",
       "a writable file; may be the INSAR pool"},
      {"SLAVE_PARAMETER_POOL", POOL, required, ANY,
       "slave pool: PRF, Doppler centroid, imaging mode", "a file"},
      {"SlaveIn", RASTER, required, ANY, "slave SLC image",
       "a raster of complex int16 or complex binary16"},
      {"MaskIn", RASTER, "default: all valid", ANY, "validity mask of the slave",
       "a raster of one byte a pixel, 0 where invalid"},
      {"MAPPING_FORMAT", WORD, "default: the INSAR pool's entry", ANY,
       "kind of the coregistration mapping; written into the INSAR pool", "matrix, polynomial"},
      {"RG_MAPPING_FILE", RASTER, "required for matrix", ANY, "shifts along range [samples]",
       "a raster of 32-bit reals"},
      {"AZ_MAPPING_FILE", RASTER, "required for matrix", ANY, "shifts along azimuth [lines]",
       "a raster of 32-bit reals"},
      {"KERNEL_TYPE", WORD, required, ANY, "shape of the interpolation kernel", KernelNames()},
      {"KERNEL_COEFFICIENT", REAL_NUMBER, required, ANY,
       "Kaiser weight; the other kernels ignore it", "a number from 0 on, e.g. 2.5"},
      {"KERNEL_LENGTH", WHOLE_NUMBER, required, ANY, "taps of the kernel",
       "a whole number, e.g. 8"},
      {"KERNEL_SUBPIX_POS", WHOLE_NUMBER, required, ANY,
       "sub-pixel positions of the kernel's table", count + "; 1024 or more, e.g. 4096"},
      {"n_samples", WHOLE_NUMBER, "default: the INSAR pool's entry", ANY,
       "width of the output [samples]", count},
      {"n_lines", WHOLE_NUMBER, "required with n_samples", ANY, "height of the output [lines]",
       count},
      {"no_of_cpu", WHOLE_NUMBER, "default: PARALLEL", ANY,
       "number of worker threads; sets PARALLEL", count},
      {"SlaveOut", OUTPUT, required, ANY, "resampled slave", "a file; replaced when it exists"},
      {"MaskOut", OUTPUT, "default: none", ANY, "mask of the resampled slave",
       "a file; replaced when it exists"},
      {"PS_MODE", WHOLE_NUMBER, "default: 0", ANY, "1 switches the Doppler rate term off", "0, 1"},
      {"FLUSH_OUTPUTS", WHOLE_NUMBER, "default: 1", ANY,
       "0: do not wait until the outputs are on the disk", "0, 1"},
      {"pid", CONTROL, "default: resample", ARGUMENTS_AND_ENVIRONMENT,
       "name of the run, in log, status and configuration file names", ""},
      {"status", CONTROL, "default: current directory", ARGUMENTS_AND_ENVIRONMENT,
       "directory of the status files", ""},
      {"pcf", CONTROL, "default: pcf.<name of the run>", ARGUMENTS_AND_ENVIRONMENT,
       "configuration file", ""},
      {"lfn", CONTROL, "default: log.<name of the run>", ARGUMENTS_AND_ENVIRONMENT, "log file", ""},
      {"lfl", WORD, "default: DEBUG", ANY, "level of the log file",
       "TRACE, DEBUG, PARAMETER, INFO, QA_WARNING, WARNING, EXCEPTION, ALARM"},
      {"lsl", WORD, "default: INFO", ANY, "level of the screen", "as for lfl, and NO_MESSAGE"},
      {"PARALLEL", WHOLE_NUMBER, "default: the online processors", ENVIRONMENT,
       "number of worker threads; the result does not depend on it", ""},
      {"RESAMPLE_SIMD", WORD, "default: the fastest that the processor supports", ENVIRONMENT,
       "variant of the core: plain, x86-64, x86-64-v3, x86-64-v4, aarch64", ""},
      {"SECONDS_ON_PARAMETER_INPUT", WHOLE_NUMBER, "default: 120", ENVIRONMENT,
       "time limit of a question at the keyboard [s]; 0: none", ""},
      {"PROC_NAME", WORD, "default: none", ENVIRONMENT,
       "name of the starting program, shown in the head of the log", ""},
  };
}

}  // namespace

std::span<const PARAMETER_ENTRY> Parameters() {
  static const std::vector<PARAMETER_ENTRY> table = MakeTable();
  return table;
}

const PARAMETER_ENTRY* FindParameter(std::string_view name) {
  const auto table = Parameters();
  const auto found = std::ranges::find(table, name, &PARAMETER_ENTRY::name);
  return found == table.end() ? nullptr : &*found;
}

std::vector<std::string> ParametersOf(std::initializer_list<PARAMETER_KIND> kinds) {
  std::vector<std::string> names;
  for (const PARAMETER_ENTRY& parameter : Parameters()) {
    if (std::ranges::find(kinds, parameter.kind) != kinds.end()) {
      names.push_back(parameter.name);
    }
  }
  return names;
}

std::string ParameterHint(const std::string& name) {
  const PARAMETER_ENTRY* const parameter = FindParameter(name);
  if (parameter == nullptr) {
    return "";
  }
  std::string hint = parameter->name + ": " + parameter->meaning + "\n";
  if (!parameter->values.empty()) {
    hint += "value: " + parameter->values + "\n";
  }
  return hint;
}

std::string NumberComplaint(const PARAMETER_ENTRY& parameter, const std::string& text) {
  const bool is_whole = parameter.kind == WHOLE_NUMBER;
  if (!parameter.IsNumber()) {
    return "";
  }
  const C_LOCALE c_locale;
  char* end = nullptr;
  if (is_whole) {
    std::strtol(text.c_str(), &end, 10);
  } else {
    std::strtod(text.c_str(), &end);
  }
  const std::string number = text.substr(0, static_cast<std::size_t>(end - text.c_str()));
  if (!number.empty() && number.size() == text.size()) {
    return "";
  }
  return "\"" + text + "\" is no " + (is_whole ? "whole number" : "number") + " and counts as " +
         (number.empty() ? "0" : number);
}
