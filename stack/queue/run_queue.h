#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "basics/signals.h"

/// What a queue does with a slave that it has.
enum class QUEUE_STATE {
  WAITING,
  HELD,          ///< until somebody releases it
  NOT_LAUNCHED,  ///< held after a node could not launch it: nobody but an operator would release it
  RUNNING
};

struct QUEUE_ENTRY {
  QUEUE_STATE state = QUEUE_STATE::WAITING;
  std::string reason{};  ///< why it waits, in the queue's words; may be empty

  bool IsRunning() const noexcept { return state == QUEUE_STATE::RUNNING; }
};

/// Slaves by their names; nothing where that cannot be told at the moment.
using ACTIVE_SLAVES = std::optional<std::map<std::string, QUEUE_ENTRY>>;

/// Why a slave is not in the queue any more.
struct QUEUE_END {
  enum class KIND { LOST, CANCELLED, TIMED_OUT };
  KIND kind = KIND::LOST;
  std::string text{};  ///< for a person
};

/// Slaves that a queue did not take, and why.
struct REFUSED_SLAVES {
  std::vector<std::string> names{};
  std::string reason{};
};

/// Where the runs of a stack are executed, each by `resample-stack run FOLDER`.
class RUN_QUEUE {
 public:
  RUN_QUEUE() = default;
  RUN_QUEUE(const RUN_QUEUE&) = delete;
  RUN_QUEUE& operator=(const RUN_QUEUE&) = delete;
  virtual ~RUN_QUEUE() = default;

  /// Takes slaves by their names, in this order. May be asked again for those that it refused.
  virtual REFUSED_SLAVES Submit(const std::vector<std::string>& names) = 0;
  /// Does what is due: notes who has ended, and lets others begin.
  virtual void Attend() = 0;
  /// All slaves of the stack that wait or run in the queue, whoever submitted them.
  virtual ACTIVE_SLAVES Active() const = 0;
  /// Of a slave that was active and is not any more.
  virtual QUEUE_END EndOf(const std::string& name) = 0;
  /// How long a record may be late that the end of a run has left.
  virtual std::chrono::seconds Patience() const = 0;
  /// Takes slaves out of the queue again, whether they wait or run. Throws STACK_ERROR when it
  /// cannot.
  virtual void Cancel(const std::vector<std::string>& names) = 0;
  /// Until it is time to ask for the active ones again.
  virtual void Wait(SIGNALS& signals) = 0;
};
