#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "run/signals.h"

/// What becomes of a slave that a queue has taken.
enum class QUEUE_STATE { WAITING, RUNNING };

/// Where the runs of a stack are executed, each by `resample-stack run FOLDER`.
class RUN_QUEUE {
 public:
  RUN_QUEUE() = default;
  RUN_QUEUE(const RUN_QUEUE&) = delete;
  RUN_QUEUE& operator=(const RUN_QUEUE&) = delete;
  virtual ~RUN_QUEUE() = default;

  /// Takes slaves by their names, in this order. Throws STACK_ERROR when it cannot.
  virtual void Submit(const std::vector<std::string>& names) = 0;
  /// All slaves of the stack that wait or run in the queue, whoever submitted them; nothing when
  /// that cannot be told at the moment.
  virtual std::optional<std::map<std::string, QUEUE_STATE>> Active() = 0;
  /// Lets none begin that waits; those that run go on.
  virtual void CancelWaiting() = 0;
  /// Until it is time to ask for the active ones again.
  virtual void Wait(SIGNALS& signals) const = 0;
};
