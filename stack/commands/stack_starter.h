#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "commands/status_display.h"
#include "description/stack_description.h"
#include "description/stack_folder.h"
#include "queue/run_queue.h"
#include "start/preparation.h"
#include "status/stack_start.h"
#include "status/stack_status.h"

/// What the command line says of a start.
struct START_OPTIONS {
  std::string description;
  bool is_local = false;
  bool is_slurm = false;
  int concurrent = 0;  ///< runs at a time; 0: as many as are best
  int retries = 2;
  bool no_wait = false;
  std::string program;
  std::string scratch;
  std::vector<std::string> only;
  bool again = false;  ///< also what is finished
  std::vector<std::string> sbatch_options;

  /// The words of a command line that says the same of all slaves, without the description.
  std::vector<std::string> Arguments() const;
};

/// One start of a stack, from the look at what is there to the end of the last run.
class STACK_STARTER {
 public:
  /// Throws STACK_ERROR for a description or options that nothing can be started with.
  explicit STACK_STARTER(const START_OPTIONS& options);

  /// Whether every wanted slave has been resampled, or with `no_wait` whether none has failed so
  /// far. Throws STACK_ERROR when nothing was started.
  bool Start();

 private:
  STACK_START ThisStart() const;
  void MakeQueue();
  /// Active slaves, after those have left the queue whose runs would make something else.
  std::map<std::string, QUEUE_ENTRY> ActiveSlaves(const WISHES& wishes);
  STACK_WORK Prepare();
  REFUSED_SLAVES Submit(const STACK_WORK& work);
  void Accompany(const STACK_WORK& work, const REFUSED_SLAVES& refused);
  void TellTroubles() const;
  bool AreWantedDone(const STACK_STATUS& status) const;

  const START_OPTIONS& options_;
  STACK_DESCRIPTION description_;
  STACK_FOLDER stack_;
  std::optional<STACK_WATCH> watch_;
  std::unique_ptr<RUN_QUEUE> queue_;
  STATUS_DISPLAY display_;
  std::map<std::string, std::string> troubles_;  ///< by slaves
};
