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
  /// What a person should know before the runs begin, and of which slaves; of the whole stack
  /// where these are none.
  std::map<std::string, std::vector<std::string>> remarks;
  /// Slaves that cannot be prepared, and why.
  std::map<std::string, std::string> troubles;
};

/// The slaves of the description that a start wants. Throws STACK_ERROR for a name that is none.
std::vector<STACK_SLAVE> WantedSlaves(const STACK_DESCRIPTION& stack,
                                      const std::set<std::string>& only);

/// Those of the active slaves whose runs would make something else than the start wants.
std::vector<std::string> OutdatedSlaves(const STACK_DESCRIPTION& stack, const WISHES& wishes,
                                        const std::map<std::string, QUEUE_ENTRY>& active);

/// Removes the STOP files of an earlier start, for which it makes the folder. Those that come later
/// are of this start. Throws std::system_error without the folder, and STACK_ERROR as
/// `WantedSlaves` does.
void RemoveStops(const STACK_DESCRIPTION& stack, const std::set<std::string>& only);

/// Makes the folders of all wanted slaves that are neither finished nor active, checks their runs
/// by all that a run would look at before it writes, and leaves those that would fail as failed
/// with the reason. What goes wrong with one slave is its own trouble.
STACK_WORK PrepareStack(const STACK_DESCRIPTION& stack, const WISHES& wishes,
                        const std::map<std::string, QUEUE_ENTRY>& active);
