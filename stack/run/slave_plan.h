#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "description/stack_folder.h"

/// What one slave's run is, as its start has settled it: all that is needed on the machine where
/// it happens.
struct SLAVE_PLAN {
  std::string program;  ///< absolute path of resample
  std::string version;  ///< what it said about itself
  std::string build;    ///< its BuildOf
  std::map<std::string, std::string> parameters;
  std::string base;  ///< folder of the description: what lies below moves together with the stack
  std::string scratch;  ///< folder on the run's machine for copies of its rasters; empty: no copies
  /// How often a run may be repeated that died of a signal or with its machine.
  int retries = 0;

  /// The parameters as the run gets them: outputs under their partial names.
  std::map<std::string, std::string> RunParameters() const;
  /// Final names of the outputs.
  std::vector<std::filesystem::path> Outputs() const;
  /// Whether runs of both make the same of the same inputs.
  bool MakesTheSame(const SLAVE_PLAN& other) const;
};

/// What changes when the program at this path is another one; "absent" without a readable file.
std::string BuildOf(const std::filesystem::path& program);

/// Throws std::system_error when a file cannot be written.
void WriteSlavePlan(const SLAVE_FOLDER& folder, const SLAVE_PLAN& plan);
/// Throws STACK_ERROR when there is no complete plan.
SLAVE_PLAN ReadSlavePlan(const SLAVE_FOLDER& folder);

/// The configuration file of a run. Throws std::system_error.
void WriteConfigurationFile(const SLAVE_FOLDER& folder,
                            const std::map<std::string, std::string>& parameters);
