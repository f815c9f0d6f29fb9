#include "app/run_parameters.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "app/mandatory_parameter.h"
#include "app/parameter_table.h"
#include "base/error_exception.h"
#include "logging/logging.h"
#include "system/c_locale.h"

namespace {

using enum LOGGING_LEVEL_T;
using BASIC::TYPES::MappingFormatType;

std::optional<std::string> OptionalParameter(CONTROLLER_IFC& controller, const char* name) {
  if (!controller.IsGiven(name)) {
    return std::nullopt;
  }
  return MandatoryParameter(controller, name);
}

/// A text that is no number counts as what stands at its beginning.
void WarnOfBadNumber(const char* name, const std::string& text) {
  if (const std::string complaint = NumberComplaint(*FindParameter(name), text);
      !complaint.empty()) {
    Log() << WARNING << name << " " << complaint;
  }
}

/// Decimal integer at the start of the text, 0 without one; saturated to 32 bits.
int ToInteger(const char* name, const std::string& text) {
  WarnOfBadNumber(name, text);
  const long value = std::strtol(text.c_str(), nullptr, 10);
  return static_cast<int>(
      std::clamp<long>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

int MandatoryInteger(CONTROLLER_IFC& controller, const char* name) {
  return ToInteger(name, MandatoryParameter(controller, name));
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
  if (const auto forced = OptionalParameter(controller, "MAPPING_FORMAT")) {
    format.Assign(forced->c_str());
    insar_pool.WriteEnumeration(MappingFormatKey(insar_pool), format);
    Log().Message(INFO,
                  "  - Mapping type has been forced by PCF value. It has been written to pool");
  } else {
    insar_pool.ReadEnumeration(MappingFormatKey(insar_pool), format);
    Log().Message(INFO, "  - Mapping type has been read from pool");
  }
  return format;
}

void CheckOutputSize(const OUTPUT_SIZE& size) {
  if (size.n_samples < 1 || size.n_lines < 1) {
    Log().Message(ALARM, "output without pixels: n_samples = %d, n_lines = %d", size.n_samples,
                  size.n_lines);
    throw ERROR_ARGUMENT();
  }
}

}  // namespace

INPUT_FILES ReadInputFiles(CONTROLLER_IFC& controller) {
  return {.slave_pool = MandatoryParameter(controller, "SLAVE_PARAMETER_POOL"),
          .slave = MandatoryParameter(controller, "SlaveIn"),
          .mask = OptionalParameter(controller, "MaskIn")};
}

MAPPING_PARAMETERS ReadMappingParameters(CONTROLLER_IFC& controller,
                                         PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool) {
  MAPPING_PARAMETERS mapping;
  mapping.format = ReadMappingFormat(controller, insar_pool);
  if (mapping.format.Id() == MappingFormatType::MATRIX) {
    mapping.rg_file = MandatoryParameter(controller, "RG_MAPPING_FILE");
    mapping.az_file = MandatoryParameter(controller, "AZ_MAPPING_FILE");
  }
  return mapping;
}

KERNEL_PARAMETERS ReadKernelParameters(CONTROLLER_IFC& controller) {
  KERNEL_PARAMETERS kernel;
  kernel.type.Assign(MandatoryParameter(controller, "KERNEL_TYPE").c_str());
  const std::string coefficient = MandatoryParameter(controller, "KERNEL_COEFFICIENT");
  WarnOfBadNumber("KERNEL_COEFFICIENT", coefficient);
  kernel.coefficient = RealFromText(coefficient.c_str());
  kernel.length = MandatoryInteger(controller, "KERNEL_LENGTH");
  kernel.subpix_positions = MandatoryInteger(controller, "KERNEL_SUBPIX_POS");
  return kernel;
}

OUTPUT_SIZE ReadOutputSize(CONTROLLER_IFC& controller, PARAMETER_POOL& insar_pool) {
  OUTPUT_SIZE size;
  if (const auto n_samples = OptionalParameter(controller, "n_samples")) {
    size.n_samples = ToInteger("n_samples", *n_samples);
    size.n_lines = MandatoryInteger(controller, "n_lines");
  } else {
    insar_pool.Read("n_samples", size.n_samples);
    insar_pool.Read("n_lines", size.n_lines);
  }
  CheckOutputSize(size);
  return size;
}

void ApplyNumberOfCpus(CONTROLLER_IFC& controller) {
  const std::optional<std::string> text = OptionalParameter(controller, "no_of_cpu");
  if (!text) {
    return;
  }
  const int count = ToInteger("no_of_cpu", *text);
  Log().Message(PARAMETER, "init no_of_cpu                 : %d", count);
  if (count > 0 && ::setenv("PARALLEL", text->c_str(), 1) != 0) {
    Log().Message(ALARM, "failed to execute setenv PARALLEL %s", text->c_str());
  }
}

CONTROLLER_IFC::FILE_PARAMETERS RunFileParameters() {
  return {.inputs = ParametersOf({PARAMETER_KIND::POOL, PARAMETER_KIND::RASTER}),
          .outputs = ParametersOf({PARAMETER_KIND::OUTPUT})};
}

OUTPUT_FILES ReadOutputFiles(CONTROLLER_IFC& controller) {
  return {.slave = MandatoryParameter(controller, "SlaveOut"),
          .mask = OptionalParameter(controller, "MaskOut")};
}

bool ReadPsMode(CONTROLLER_IFC& controller) {
  return ToInteger("PS_MODE", OptionalParameter(controller, "PS_MODE").value_or("0")) == 1;
}

bool ReadFlushOutputs(CONTROLLER_IFC& controller) {
  return OptionalParameter(controller, "FLUSH_OUTPUTS") != "0";
}

RUN_PARAMETERS ReadRunParameters(CONTROLLER_IFC& controller, const RUN_POOLS& pools) {
  RUN_PARAMETERS parameters;
  parameters.inputs = ReadInputFiles(controller);
  // Before a forced mapping format is handed to the pool, which even a failed run writes.
  pools.RefuseInputs({controller.ConfigurationFileName(), parameters.inputs.slave,
                      parameters.inputs.mask.value_or("")});
  parameters.mapping = ReadMappingParameters(controller, *pools.insar);
  pools.RefuseInputs({parameters.mapping.rg_file, parameters.mapping.az_file});
  parameters.kernel = ReadKernelParameters(controller);
  parameters.size = ReadOutputSize(controller, *pools.insar);
  ApplyNumberOfCpus(controller);
  parameters.outputs = ReadOutputFiles(controller);
  parameters.ps_mode = ReadPsMode(controller);
  parameters.flush_outputs = ReadFlushOutputs(controller);
  return parameters;
}

void EchoRunParameters(const RUN_PARAMETERS& parameters, const std::string& insar_pool_name) {
  const auto echo = [](const char* label, const std::optional<std::string>& value) {
    if (value) {
      Log().Message(INFO, "   - %-15s: %s", label, value->c_str());
    }
  };
  echo("InsarPoolName", insar_pool_name);
  echo("SlavePoolName", parameters.inputs.slave_pool);
  echo("SlaveIn", parameters.inputs.slave);
  echo("MaskIn", parameters.inputs.mask);
  echo("Mapping type", parameters.mapping.format.Name());
  if (parameters.mapping.format.Id() == MappingFormatType::MATRIX) {
    echo("RgMappingFile", parameters.mapping.rg_file);
    echo("AzMappingFile", parameters.mapping.az_file);
  }
  Log().Message(INFO, "   - n_samples      : %d", parameters.size.n_samples);
  Log().Message(INFO, "   - n_lines        : %d", parameters.size.n_lines);
  echo("SlaveOut", parameters.outputs.slave);
  echo("MaskOut", parameters.outputs.mask);
}
