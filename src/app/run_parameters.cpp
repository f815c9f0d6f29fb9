#include "app/run_parameters.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;
using BASIC::TYPES::MappingFormatType;

std::optional<std::string> OptionalParameter(CONTROLLER_IFC& controller, const char* name) {
  if (!controller.IsGiven(name)) {
    return std::nullopt;
  }
  return MandatoryParameter(controller, name);
}

/// Decimal integer at the start of the text, 0 without one; saturated to 32 bits.
int ToInteger(const std::string& text) {
  const long value = std::strtol(text.c_str(), nullptr, 10);
  return static_cast<int>(
      std::clamp<long>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

int MandatoryInteger(CONTROLLER_IFC& controller, const char* name) {
  return ToInteger(MandatoryParameter(controller, name));
}

/// The pool key of the mapping format. Older pools hold it in upper case only, and keep it so.
const char* MappingFormatKey(PARAMETER_POOL& pool) {
  constexpr const char* key = "mapping_format";
  constexpr const char* upper_case_key = "MAPPING_FORMAT";
  return !pool.Exists(key) && pool.Exists(upper_case_key) ? upper_case_key : key;
}

std::optional<MappingFormatType> ReadMappingFormat(CONTROLLER_IFC& controller,
                                                   PARAMETER_POOL_READ_WRITE_CHANGE* insar_pool) {
  MappingFormatType format;
  if (const auto forced = OptionalParameter(controller, "MAPPING_FORMAT")) {
    format.Assign(forced->c_str());
    if (insar_pool != nullptr) {
      insar_pool->WriteEnumeration(MappingFormatKey(*insar_pool), format);
    }
    Log().Message(INFO,
                  "  - Mapping type has been forced by PCF value. It has been written to pool");
    return format;
  }
  if (insar_pool == nullptr) {
    return std::nullopt;
  }
  insar_pool->ReadEnumeration(MappingFormatKey(*insar_pool), format);
  Log().Message(INFO, "  - Mapping type has been read from pool");
  return format;
}

std::optional<KERNEL_PARAMETERS> ReadKernelParameters(CONTROLLER_IFC& controller,
                                                      const SETUP_STEPS& steps) {
  KERNEL_PARAMETERS kernel;
  const bool is_read = steps.TakeAll(
      {[&] { kernel.type.Assign(MandatoryParameter(controller, "KERNEL_TYPE").c_str()); },
       [&] {
         const std::string coefficient = MandatoryParameter(controller, "KERNEL_COEFFICIENT");
         kernel.coefficient = std::strtod(coefficient.c_str(), nullptr);
       },
       [&] { kernel.length = MandatoryInteger(controller, "KERNEL_LENGTH"); },
       [&] { kernel.subpix_positions = MandatoryInteger(controller, "KERNEL_SUBPIX_POS"); }});
  return is_read ? std::optional(kernel) : std::nullopt;
}

void CheckOutputSize(int n_samples, int n_lines) {
  if (n_samples < 1 || n_lines < 1) {
    Log().Message(ALARM, "output without pixels: n_samples = %d, n_lines = %d", n_samples, n_lines);
    throw ERROR_ARGUMENT();
  }
}

void ReadOutputSize(CONTROLLER_IFC& controller, PARAMETER_POOL* insar_pool,
                    const SETUP_STEPS& steps, RUN_PARAMETERS& parameters) {
  int n_samples = 0;
  int n_lines = 0;
  bool is_read = false;
  if (const auto text = OptionalParameter(controller, "n_samples")) {
    n_samples = ToInteger(*text);
    is_read = steps.Take([&] { n_lines = MandatoryInteger(controller, "n_lines"); });
  } else if (insar_pool != nullptr) {
    is_read = steps.TakeAll({[&] { insar_pool->Read("n_samples", n_samples); },
                             [&] { insar_pool->Read("n_lines", n_lines); }});
  }
  if (is_read && steps.Take([&] { CheckOutputSize(n_samples, n_lines); })) {
    parameters.n_samples = n_samples;
    parameters.n_lines = n_lines;
  }
}

void ApplyNumberOfCpus(CONTROLLER_IFC& controller) {
  const std::optional<std::string> text = OptionalParameter(controller, "no_of_cpu");
  if (!text) {
    return;
  }
  const int count = ToInteger(*text);
  Log().Message(PARAMETER, "init no_of_cpu                 : %d", count);
  if (count > 0 && ::setenv("PARALLEL", text->c_str(), 1) != 0) {
    Log().Message(ALARM, "failed to execute setenv PARALLEL %s", text->c_str());
  }
}

}  // namespace

std::string MandatoryParameter(CONTROLLER_IFC& controller, const char* name) {
  std::string value;
  controller.GetParameter(name, value);
  return value;
}

RUN_PARAMETERS ReadRunParameters(CONTROLLER_IFC& controller,
                                 PARAMETER_POOL_READ_WRITE_CHANGE* insar_pool,
                                 const SETUP_STEPS& steps) {
  RUN_PARAMETERS parameters;
  const auto read = [&](const char* name, std::optional<std::string>& value) {
    steps.Take([&] { value = MandatoryParameter(controller, name); });
  };
  read("SLAVE_PARAMETER_POOL", parameters.slave_pool);
  read("SlaveIn", parameters.slave_in);
  parameters.mask_in = OptionalParameter(controller, "MaskIn");
  steps.Take([&] { parameters.mapping_format = ReadMappingFormat(controller, insar_pool); });
  if (parameters.mapping_format && parameters.mapping_format->Id() == MappingFormatType::MATRIX) {
    read("RG_MAPPING_FILE", parameters.rg_mapping_file);
    read("AZ_MAPPING_FILE", parameters.az_mapping_file);
  }
  parameters.kernel = ReadKernelParameters(controller, steps);
  ReadOutputSize(controller, insar_pool, steps, parameters);
  ApplyNumberOfCpus(controller);
  read("SlaveOut", parameters.slave_out);
  parameters.mask_out = OptionalParameter(controller, "MaskOut");
  parameters.ps_mode = ToInteger(OptionalParameter(controller, "PS_MODE").value_or("0")) == 1;
  return parameters;
}

void EchoRunParameters(const RUN_PARAMETERS& parameters,
                       const std::optional<std::string>& insar_pool_name) {
  const auto echo = [](const char* label, const std::optional<std::string>& value) {
    if (value) {
      Log().Message(INFO, "   - %-15s: %s", label, value->c_str());
    }
  };
  echo("InsarPoolName", insar_pool_name);
  echo("SlavePoolName", parameters.slave_pool);
  echo("SlaveIn", parameters.slave_in);
  echo("MaskIn", parameters.mask_in);
  if (parameters.mapping_format) {
    echo("Mapping type", parameters.mapping_format->Name());
  }
  echo("RgMappingFile", parameters.rg_mapping_file);
  echo("AzMappingFile", parameters.az_mapping_file);
  Log().Message(INFO, "   - n_samples      : %d", parameters.n_samples);
  Log().Message(INFO, "   - n_lines        : %d", parameters.n_lines);
  echo("SlaveOut", parameters.slave_out);
  echo("MaskOut", parameters.mask_out);
}
