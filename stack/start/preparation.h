#pragma once

#include <map>
#include <string>
#include <vector>

#include "description/stack_description.h"
#include "queue/run_queue.h"
#include "run/slave_plan.h"
#include "run/stack_folder.h"

/// What a start finds to do.
struct STACK_WORK {
  int finished = 0;
  std::vector<std::string> to_run;
  std::vector<std::string> active;  ///< which an earlier start has submitted
  /// What a person should know before the runs begin, line by line.
  std::vector<std::string> remarks;
};

/// The program of the runs.
struct PROGRAM {
  std::string path;  ///< absolute
  std::string version;
};

/// `path` as given, or else resample beside this program, or else in PATH. Throws STACK_ERROR when
/// it tells no version.
PROGRAM FindProgram(const std::string& path);

/// Makes the folders of all slaves that are neither finished nor active, checks their runs by all
/// that a run would look at before it writes, and leaves those that would fail as failed with the
/// reason. STOP files of an earlier start go. Throws std::exception when the folders cannot be
/// written.
STACK_WORK PrepareStack(const STACK_DESCRIPTION& stack, const PROGRAM& program, int retries,
                        const std::map<std::string, QUEUE_STATE>& active);
