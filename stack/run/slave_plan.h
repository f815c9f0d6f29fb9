#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "run/stack_folder.h"

/// What one slave's run is, as its start has settled it: all that is needed on the machine where
/// it happens.
struct SLAVE_PLAN {
  std::string program;  ///< absolute path of resample
  std::string version;  ///< what it said about itself
  std::map<std::string, std::string> parameters;
  /// How often a run may be repeated that died of a signal or with its machine.
  int retries = 0;

  /// The parameters as the run gets them: outputs under their partial names.
  std::map<std::string, std::string> RunParameters() const;
  /// Final names of the outputs.
  std::vector<std::filesystem::path> Outputs() const;
};

/// Throws std::system_error when a file cannot be written.
void WriteSlavePlan(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan);
/// Throws std::runtime_error when there is no complete plan.
SLAVE_PLAN ReadSlavePlan(const SLAVE_FOLDER& folder);

/// The configuration file of the run. Throws std::system_error.
void WriteConfigurationFile(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan);
