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

MappingFormatType ReadMappingFormat(CONTROLLER_IFC& controller,
                                    PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
  MappingFormatType format;
  const char* key = MappingFormatKey(insar_pool);
  if (const auto forced = OptionalParameter(controller, "MAPPING_FORMAT")) {
    format.Assign(forced->c_str());
    insar_pool.WriteEnumeration(key, format);
    Log().Message(INFO,
                  "  - Mapping type has been forced by PCF value. It has been written to pool");
  } else {
    insar_pool.ReadEnumeration(key, format);
    Log().Message(INFO, "  - Mapping type has been read from pool");
  }
  return format;
}

KERNEL_PARAMETERS ReadKernelParameters(CONTROLLER_IFC& controller) {
  KERNEL_PARAMETERS kernel;
  kernel.type.Assign(MandatoryParameter(controller, "KERNEL_TYPE").c_str());
  const std::string coefficient = MandatoryParameter(controller, "KERNEL_COEFFICIENT");
  kernel.coefficient = std::strtod(coefficient.c_str(), nullptr);
  kernel.length = MandatoryInteger(controller, "KERNEL_LENGTH");
  kernel.subpix_positions = MandatoryInteger(controller, "KERNEL_SUBPIX_POS");
  return kernel;
}

void ReadOutputSize(CONTROLLER_IFC& controller, PARAMETER_POOL& insar_pool,
                    RUN_PARAMETERS& parameters) {
  if (const auto n_samples = OptionalParameter(controller, "n_samples")) {
    parameters.n_samples = ToInteger(*n_samples);
    parameters.n_lines = MandatoryInteger(controller, "n_lines");
  } else {
    insar_pool.Read("n_samples", parameters.n_samples);
    insar_pool.Read("n_lines", parameters.n_lines);
  }
  if (parameters.n_samples < 1 || parameters.n_lines < 1) {
    Log().Message(ALARM, "output without pixels: n_samples = %d, n_lines = %d",
                  parameters.n_samples, parameters.n_lines);
    throw ERROR_ARGUMENT();
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
                                 PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
  RUN_PARAMETERS parameters;
  parameters.slave_pool = MandatoryParameter(controller, "SLAVE_PARAMETER_POOL");
  parameters.slave_in = MandatoryParameter(controller, "SlaveIn");
  parameters.mask_in = OptionalParameter(controller, "MaskIn");
  parameters.mapping_format = ReadMappingFormat(controller, insar_pool);
  if (parameters.mapping_format.Id() == MappingFormatType::MATRIX) {
    parameters.rg_mapping_file = MandatoryParameter(controller, "RG_MAPPING_FILE");
    parameters.az_mapping_file = MandatoryParameter(controller, "AZ_MAPPING_FILE");
  }
  parameters.kernel = ReadKernelParameters(controller);
  ReadOutputSize(controller, insar_pool, parameters);
  ApplyNumberOfCpus(controller);
  parameters.slave_out = MandatoryParameter(controller, "SlaveOut");
  parameters.mask_out = OptionalParameter(controller, "MaskOut");
  parameters.ps_mode = ToInteger(OptionalParameter(controller, "PS_MODE").value_or("0")) == 1;
  return parameters;
}

void EchoRunParameters(const RUN_PARAMETERS& parameters, const char* insar_pool_name) {
  LOGGING& log = Log();
  log.Message(INFO, "   - InsarPoolName  : %s", insar_pool_name);
  log.Message(INFO, "   - SlavePoolName  : %s", parameters.slave_pool.c_str());
  log.Message(INFO, "   - SlaveIn        : %s", parameters.slave_in.c_str());
  if (parameters.mask_in) {
    log.Message(INFO, "   - MaskIn         : %s", parameters.mask_in->c_str());
  }
  log.Message(INFO, "   - Mapping type   : %s", parameters.mapping_format.Name());
  if (parameters.mapping_format.Id() == MappingFormatType::MATRIX) {
    log.Message(INFO, "   - RgMappingFile  : %s", parameters.rg_mapping_file.c_str());
    log.Message(INFO, "   - AzMappingFile  : %s", parameters.az_mapping_file.c_str());
  }
  log.Message(INFO, "   - n_samples      : %d", parameters.n_samples);
  log.Message(INFO, "   - n_lines        : %d", parameters.n_lines);
  log.Message(INFO, "   - SlaveOut       : %s", parameters.slave_out.c_str());
  if (parameters.mask_out) {
    log.Message(INFO, "   - MaskOut        : %s", parameters.mask_out->c_str());
  }
}
