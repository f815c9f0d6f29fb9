#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "queue/run_queue.h"
#include "run/slave_record.h"
#include "run/stack_folder.h"

/// The last start of a stack, as its directory keeps it.
struct STACK_START {
  std::string name;                 ///< of the stack
  std::vector<std::string> slaves;  ///< all of the description, in its order
  double begun = 0.0;               ///< seconds since 1970
};

/// Throws std::system_error.
void WriteStackStart(const STACK_FOLDER& stack, const STACK_START& start);
/// Throws STACK_ERROR when the stack was never started, and std::exception for a file that is none.
STACK_START ReadStackStart(const STACK_FOLDER& stack);

/// How one slave stands.
struct SLAVE_STATUS {
  std::string name;
  RUN_STATE state = RUN_STATE::WAITING;
  std::string reason;
  int percent = 0;  ///< of the run, as its log tells it
  std::vector<RUN_ATTEMPT> attempts;

  bool IsDone() const noexcept { return state == RUN_STATE::SUCCEEDED; }
  bool IsRunning() const noexcept { return state == RUN_STATE::RUNNING; }
  bool HasFailed() const noexcept { return state == RUN_STATE::FAILED || state == RUN_STATE::DIED; }
};

/// How a stack stands. Those that neither are done nor run nor have failed wait: in the queue, or
/// for the next start.
struct STACK_STATUS {
  std::string name;
  std::vector<SLAVE_STATUS> slaves;
  int done = 0;
  int running = 0;
  int failed = 0;
  int waiting = 0;
  int queued = 0;                        ///< of those that wait
  std::optional<double> slaves_an_hour;  ///< of the last start, once something has been done
  std::optional<double> seconds_left;    ///< at that rate, for what runs and is queued

  bool IsActive() const noexcept { return running + queued > 0; }
  bool IsComplete() const noexcept { return done == static_cast<int>(slaves.size()); }
};

/// `active`: what the queue says, where it answers. A slave runs that is active in it or whose
/// runner holds its lock; one that waits is queued when it is in it or a starter is at work.
STACK_STATUS ReadStackStatus(const STACK_FOLDER& stack, const STACK_START& start,
                             const std::optional<std::map<std::string, QUEUE_STATE>>& active);

/// For a person, several lines; and for machines.
std::string StatusText(const STACK_STATUS& status);
nlohmann::json StatusJson(const STACK_STATUS& status);
