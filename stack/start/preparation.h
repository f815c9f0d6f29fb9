#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "description/stack_description.h"
#include "description/stack_folder.h"
#include "queue/run_queue.h"
#include "run/slave_plan.h"
#include "start/program.h"

/// What a start wants.
struct WISHES {
  PROGRAM program;
  int retries = 0;
  std::string scratch;
  std::set<std::string> only;  ///< names of the slaves that are started; empty: all
  bool again = false;          ///< also those that are finished
};

/// What a start finds to do.
struct STACK_WORK {
  int finished = 0;
  std::vector<std::string> to_run;
  std::vector<std::string> active;  ///< which an earlier start has submitted
  /// What a person should know before the runs begin, line by line.
  std::vector<std::string> remarks;
  /// Slaves that cannot be prepared, and why.
  std::map<std::string, std::string> troubles;
};

/// The slaves of the description that a start wants. Throws STACK_ERROR for a name that is none.
std::vector<STACK_SLAVE> WantedSlaves(const STACK_DESCRIPTION& stack,
                                      const std::set<std::string>& only);

/// Those of the active slaves whose runs would make something else than the start wants.
std::vector<std::string> OutdatedSlaves(const STACK_DESCRIPTION& stack, const WISHES& wishes,
                                        const std::map<std::string, QUEUE_ENTRY>& active);

/// Makes the folders of all wanted slaves that are neither finished nor active, checks their runs
/// by all that a run would look at before it writes, and leaves those that would fail as failed
/// with the reason. STOP files of an earlier start go. What goes wrong with one slave is its own
/// trouble; throws std::exception only when the stack's folder cannot be made.
STACK_WORK PrepareStack(const STACK_DESCRIPTION& stack, const WISHES& wishes,
                        const std::map<std::string, QUEUE_ENTRY>& active);
