#pragma once

#include <string>
#include <vector>

#include "app/run_parameters.h"
#include "app/run_pools.h"
#include "control/controller_ifc.h"
#include "core/resample_input.h"

/// The files that a run uses besides its outputs; an empty name where there is none.
std::vector<std::string> FilesInUse(const RUN_PARAMETERS& parameters, const RUN_POOLS& pools,
                                    const CONTROLLER_IFC& controller);

/// Throws ERROR_ARGUMENT when creating an output would destroy one of the files in use or the other
/// output.
void CheckOutputPaths(const OUTPUT_FILES& outputs, std::vector<std::string> files_in_use);

/// Creates the files, image and mask, of the input's output size and the slave's pixel type. Files
/// that exist are emptied only when both could be opened and locked and are neither one file nor
/// the log, standard output or standard error; else ERROR_ARGUMENT. Throws what `MEM_MGR::Create`
/// throws besides.
void CreateOutput(const OUTPUT_FILES& files, const RESAMPLE_INPUT& input, RESAMPLE_OUTPUT& output);
