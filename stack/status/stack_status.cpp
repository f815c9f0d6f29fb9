#include "status/stack_status.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "description/stack_description.h"
#include "run/file_lock.h"
#include "run/run_log_end.h"
#include "run/text_file.h"

namespace {

using JSON = nlohmann::json;

/// Counts the slaves of a stack, and how much has been done since its start.
class COUNTS {
 public:
  COUNTS(STACK_STATUS& status, double begun) : status_(status), begun_(begun) {}

  void Add(const SLAVE_STATUS& slave, bool is_queued) {
    if (slave.IsDone()) {
      ++status_.done;
      done_since_start_ += !slave.attempts.empty() && slave.attempts.back().ended >= begun_;
    } else if (slave.IsRunning()) {
      ++status_.running;
      parts_of_running_ += slave.percent / 100.0;
    } else if (slave.HasFailed()) {
      ++status_.failed;
    } else {
      ++status_.waiting;
      status_.queued += is_queued && slave.state == RUN_STATE::WAITING;
    }
    for (const RUN_ATTEMPT& attempt : slave.attempts) {
      last_end_ = std::max(last_end_, attempt.ended);
    }
  }

  void EstimateRate() {
    const double seconds = (status_.IsActive() ? SecondsSince1970() : last_end_) - begun_;
    const double done = done_since_start_ + parts_of_running_;
    if (done <= 0.0 || seconds <= 0.0) {
      return;
    }
    constexpr double seconds_an_hour = 3600.0;
    status_.slaves_an_hour = done / seconds * seconds_an_hour;
    if (status_.IsActive()) {
      status_.seconds_left =
          (status_.queued + status_.running - parts_of_running_) * seconds / done;
    }
  }

 private:
  STACK_STATUS& status_;
  double begun_;
  int done_since_start_ = 0;
  double parts_of_running_ = 0.0;
  double last_end_ = 0.0;
};

}  // namespace

void WriteStackStart(const STACK_FOLDER& stack, const STACK_START& start) {
  const JSON json = {{"name", start.name}, {"slaves", start.slaves}, {"begun", start.begun}};
  ReplaceTextFile(stack.StartFile(), json.dump() + "\n");
}

STACK_START ReadStackStart(const STACK_FOLDER& stack) {
  const auto text = ReadTextFile(stack.StartFile());
  if (!text) {
    throw STACK_ERROR("the stack was never started: no " + stack.StartFile().string());
  }
  const JSON json = JSON::parse(*text);
  return {.name = json.at("name"), .slaves = json.at("slaves"), .begun = json.at("begun")};
}

STACK_STATUS STACK_WATCH::Look(const ACTIVE_SLAVES& active) {
  STACK_STATUS status;
  status.name = start_.name;
  COUNTS counts(status, start_.begun);
  const bool has_starter = IsLocked(stack_.LockFile());
  for (const std::string& name : start_.slaves) {
    std::optional<QUEUE_STATE> queue;
    if (active && active->contains(name)) {
      queue = active->at(name);
    }
    status.slaves.push_back(LookAt(name, queue));
    counts.Add(status.slaves.back(), queue || has_starter);
  }
  counts.EstimateRate();
  return status;
}

SLAVE_STATUS STACK_WATCH::LookAt(const std::string& name, std::optional<QUEUE_STATE> queue) {
  const auto [known, is_new] = known_.try_emplace(name);
  const SLAVE_FOLDER run = stack_.Run(name);
  const bool waits_in_queue = queue == QUEUE_STATE::WAITING;
  bool is_active = queue.has_value();
  if (is_new || (queue ? !waits_in_queue : !known->second.IsDone())) {
    is_active = is_active || IsLocked(run.LockFile());
    // What was active a moment ago may have ended since, and then its record tells it.
    const SLAVE_RECORD record = ReadSlaveRecord(run);
    known->second = {.name = name,
                     .state = record.state,
                     .reason = record.reason,
                     .percent = 0,
                     .attempts = record.attempts};
  }
  SLAVE_STATUS slave = known->second;
  if (waits_in_queue) {
    slave.state = RUN_STATE::WAITING;
  } else if (slave.IsRunning() && !is_active) {
    slave.state = RUN_STATE::DIED;
    slave.reason = "its machine, its job or its runner was lost";
  } else if (slave.IsRunning()) {
    slave.percent = PercentDone(run.LogFile()).value_or(0);
  }
  return slave;
}
