#pragma once

#include <optional>
#include <string>
#include <vector>

#include "basics/child_process.h"

/// Runs one of Slurm's commands. Of what a user has set for them, only what leads to the cluster
/// counts (SLURM_CONF, SLURM_JWT), and for sbatch its own SBATCH_ variables: a format, a filter or
/// the job that this process is part of would change the answer.
COMMAND_RESULT RunSlurmCommand(const std::vector<std::string>& command);

/// What the controller, or else the accounting, says of a task.
struct TASK_REPORT {
  std::string state;   ///< such as "FAILED", "CANCELLED", "TIMEOUT", "NODE_FAIL"
  std::string reason;  ///< "None" or empty without one
  std::string exit;    ///< exit status and signal, as "0:53"
  std::string node;    ///< empty when it had none

  /// All of it on one line, for a person.
  std::string Text() const;
};

/// `task`: "JOB_INDEX". Nothing when neither of them knows it any more, or answers.
std::optional<TASK_REPORT> ReportOfTask(const std::string& task);
