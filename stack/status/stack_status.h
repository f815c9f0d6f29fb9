#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "description/stack_folder.h"
#include "queue/run_queue.h"
#include "run/slave_record.h"
#include "status/stack_start.h"

/// How one slave stands.
struct SLAVE_STATUS {
  std::string name;
  SLAVE_STATE state = SLAVE_STATE::WAITING;
  std::string reason;
  int percent = 0;          ///< of the run, as its log tells it
  bool is_at_work = false;  ///< a runner holds its lock
  std::vector<RUN_ATTEMPT> attempts;

  bool IsDone() const noexcept { return state == SLAVE_STATE::SUCCEEDED; }
  bool IsRunning() const noexcept { return state == SLAVE_STATE::RUNNING; }
  bool HasFailed() const noexcept {
    return state == SLAVE_STATE::FAILED || state == SLAVE_STATE::DIED;
  }
  /// In a queue, or for the next start, as one that has not begun.
  bool IsWaiting() const noexcept {
    return state == SLAVE_STATE::WAITING || state == SLAVE_STATE::HELD;
  }
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
  bool queue_answers = true;             ///< else nobody knows what waits and runs there
  std::optional<double> slaves_an_hour;  ///< of the last start, once something has been done
  std::optional<double> seconds_left;    ///< at that rate, for what runs and is queued

  bool IsActive() const noexcept { return running + queued > 0; }
  /// Whether something may still change without another start.
  bool MayChange() const noexcept { return IsActive() || (!queue_answers && !IsComplete()); }
  bool IsComplete() const noexcept { return done == static_cast<int>(slaves.size()); }
};

/// Looks at a stack as often as one likes. What cannot have changed is not read again: the records
/// of hundreds of slaves are much for shared storage.
class STACK_WATCH {
 public:
  STACK_WATCH(STACK_FOLDER stack, STACK_START start)
      : stack_(std::move(stack)), start_(std::move(start)), since_(SlavesSince(start_)) {}

  /// `active`: what the queue says, where it answers. A slave runs that runs in it or whose runner
  /// holds its lock; one that waits is queued when it is in it or a starter is at work. One is done
  /// whose outputs are those that its run has left.
  STACK_STATUS Look(const ACTIVE_SLAVES& active, bool has_starter);

 private:
  /// What is known besides a slave's record.
  struct SURROUNDINGS {
    std::optional<QUEUE_ENTRY> queue;
    bool queue_answers = true;
    bool has_starter = false;
  };

  SLAVE_STATUS LookAt(const std::string& name, const SURROUNDINGS& surroundings);
  SLAVE_STATUS ReadStatus(const std::string& name) const;
  bool HasOutputs(const SLAVE_FOLDER& run, const SLAVE_RECORD& record) const;
  /// Where the queue knows more than the record.
  static void Correct(SLAVE_STATUS& slave, const SURROUNDINGS& surroundings);
  /// Of a slave that runs as its record says, and nowhere else.
  static void CorrectLost(SLAVE_STATUS& slave, const SURROUNDINGS& surroundings);

  STACK_FOLDER stack_;
  STACK_START start_;
  std::vector<std::string> since_;             ///< slaves of the description that never started
  std::map<std::string, SLAVE_STATUS> known_;  ///< as their records tell them
};

/// For a person, several lines; and for machines.
std::string StatusText(const STACK_STATUS& status);
nlohmann::json StatusJson(const STACK_STATUS& status);
