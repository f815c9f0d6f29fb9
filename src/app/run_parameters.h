#pragma once

#include <optional>
#include <string>

#include "app/run_pools.h"
#include "control/controller_ifc.h"
#include "interpolation/kernel_type.h"
#include "mapping/mapping_format_type.h"
#include "pool/parameter_pool_read_write_change.h"

struct INPUT_FILES {
  std::string slave_pool;
  std::string slave;
  std::optional<std::string> mask;
};

struct MAPPING_PARAMETERS {
  BASIC::TYPES::MappingFormatType format;
  std::string rg_file;  ///< of the format matrix, like the next one
  std::string az_file;
};

/// The kernel as asked for; the kernel tables correct what they must.
struct KERNEL_PARAMETERS {
  BASIC::TYPES::KernelType type;
  double coefficient = 0.0;
  int length = 0;
  int subpix_positions = 0;
};

struct OUTPUT_SIZE {
  int n_samples = 0;
  int n_lines = 0;
};

struct OUTPUT_FILES {
  std::string slave;
  std::optional<std::string> mask;
};

/// Everything that a run takes from the controller, the pools' names excepted, and what the INSAR
/// pool adds to it.
struct RUN_PARAMETERS {
  INPUT_FILES inputs;
  MAPPING_PARAMETERS mapping;
  KERNEL_PARAMETERS kernel;
  OUTPUT_SIZE size;
  OUTPUT_FILES outputs;
  bool ps_mode = false;
  bool flush_outputs = true;
};

/// The parameters that name files of a run.
CONTROLLER_IFC::FILE_PARAMETERS RunFileParameters();

// The groups of the parameters in the order in which a run asks for them. All throw the text of a
// parameter that cannot be had.

INPUT_FILES ReadInputFiles(CONTROLLER_IFC& controller);
/// A format that comes from the controller is written into the INSAR pool, which has it otherwise.
/// Throws the errors of pools and enumerations.
MAPPING_PARAMETERS ReadMappingParameters(CONTROLLER_IFC& controller,
                                         PARAMETER_POOL_READ_WRITE_CHANGE& insar_pool);
/// Throws the enumeration's error for an unknown kernel.
KERNEL_PARAMETERS ReadKernelParameters(CONTROLLER_IFC& controller);
/// From the controller or else from the INSAR pool. Throws the pool's errors, and ERROR_ARGUMENT
/// for an output without pixels.
OUTPUT_SIZE ReadOutputSize(CONTROLLER_IFC& controller, PARAMETER_POOL& insar_pool);
/// Puts `no_of_cpu` into the environment as PARALLEL.
void ApplyNumberOfCpus(CONTROLLER_IFC& controller);
OUTPUT_FILES ReadOutputFiles(CONTROLLER_IFC& controller);
bool ReadPsMode(CONTROLLER_IFC& controller);
/// Whether the outputs are carried over to the disk: unless the value is 0.
bool ReadFlushOutputs(CONTROLLER_IFC& controller);

/// All of them. Throws ERROR_ARGUMENT besides when a pool is another input.
RUN_PARAMETERS ReadRunParameters(CONTROLLER_IFC& controller, const RUN_POOLS& pools);

/// Logs the parameters as the run understood them, those that are given.
void EchoRunParameters(const RUN_PARAMETERS& parameters, const std::string& insar_pool_name);
