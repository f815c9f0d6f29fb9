#pragma once

#include <optional>
#include <string>

#include "base/setup_steps.h"
#include "control/controller_ifc.h"
#include "interpolation/kernel_type.h"
#include "mapping/mapping_format_type.h"
#include "pool/parameter_pool_read_write_change.h"

/// The kernel as asked for; the kernel tables correct what they must.
struct KERNEL_PARAMETERS {
  BASIC::TYPES::KernelType type;
  double coefficient = 0.0;
  int length = 0;
  int subpix_positions = 0;
};

/// Everything that a run takes from the controller, and what the INSAR pool adds to it. What is
/// optional to the run has no value when it is not given, the mapping files unless the mapping
/// format is matrix. Anything required has none, or 0, only when the step that reads it has failed.
struct RUN_PARAMETERS {
  std::optional<std::string> slave_pool;
  std::optional<std::string> slave_in;
  std::optional<std::string> mask_in;
  std::optional<BASIC::TYPES::MappingFormatType> mapping_format;
  std::optional<std::string> rg_mapping_file;
  std::optional<std::string> az_mapping_file;
  std::optional<KERNEL_PARAMETERS> kernel;
  int n_samples = 0;
  int n_lines = 0;
  std::optional<std::string> slave_out;
  std::optional<std::string> mask_out;
  bool ps_mode = false;
};

/// A mandatory parameter; asked for at the keyboard when no source has it.
std::string MandatoryParameter(CONTROLLER_IFC& controller, const char* name);

/// Reads the parameters of a run in their fixed order, those of the pools' names excepted. A
/// mapping format that comes from the controller is written into the INSAR pool. `no_of_cpu`
/// ends up in the environment. Throws the errors of the pools and enumerations, and
/// ERROR_ARGUMENT for an output without pixels. Each parameter is a step; without the INSAR pool
/// those that need it are left out.
RUN_PARAMETERS ReadRunParameters(CONTROLLER_IFC& controller,
                                 PARAMETER_POOL_READ_WRITE_CHANGE* insar_pool,
                                 const SETUP_STEPS& steps);

/// Logs the parameters as the run understood them, those that have a value.
void EchoRunParameters(const RUN_PARAMETERS& parameters,
                       const std::optional<std::string>& insar_pool_name);
