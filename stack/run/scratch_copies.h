#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "run/slave_plan.h"

/// Copies of a run's rasters on a disk of its own machine: the run reads and writes there instead
/// of going through its files page by page on shared storage. Pools stay where they are.
class SCRATCH_COPIES {
 public:
  /// Copies the rasters that the plan names into a new folder below its scratch folder, whose name
  /// may begin with "$" and a variable of the environment. Throws STACK_ERROR and
  /// std::filesystem::filesystem_error.
  SCRATCH_COPIES(const SLAVE_PLAN& plan, const std::string& name);
  /// Removes the folder.
  ~SCRATCH_COPIES();
  SCRATCH_COPIES(const SCRATCH_COPIES&) = delete;
  SCRATCH_COPIES& operator=(const SCRATCH_COPIES&) = delete;

  /// Those of the run, with the copies in place of the rasters.
  const std::map<std::string, std::string>& Parameters() const noexcept { return parameters_; }
  /// Copies the outputs to their partial names, into the files that are there, and compares them
  /// with what the storage holds then. Throws STACK_ERROR and std::filesystem::filesystem_error.
  void BringOutputsBack() const;

 private:
  std::filesystem::path folder_;
  std::map<std::string, std::string> parameters_;
  std::map<std::filesystem::path, std::filesystem::path> outputs_;  ///< partial names of the copies
};
