#include "status/stack_status.h"

#include <algorithm>

#include "basics/file_lock.h"
#include "basics/stack_error.h"
#include "run/run_log_end.h"

namespace {

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
      status_.queued += is_queued && slave.IsWaiting();
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

STACK_STATUS STACK_WATCH::Look(const ACTIVE_SLAVES& active, bool has_starter) {
  STACK_STATUS status;
  status.name = start_.name;
  status.queue_answers = active.has_value();
  COUNTS counts(status, start_.begun);
  for (const std::string& name : start_.slaves) {
    SURROUNDINGS surroundings = {
        .queue = {}, .queue_answers = active.has_value(), .has_starter = has_starter};
    if (active && active->contains(name)) {
      surroundings.queue = active->at(name);
    }
    status.slaves.push_back(LookAt(name, surroundings));
    counts.Add(status.slaves.back(), surroundings.queue || has_starter);
  }
  for (const std::string& name : since_) {
    status.slaves.push_back(
        {.name = name, .reason = "in the description since the last start", .attempts = {}});
    counts.Add(status.slaves.back(), false);
  }
  counts.EstimateRate();
  return status;
}

SLAVE_STATUS STACK_WATCH::LookAt(const std::string& name, const SURROUNDINGS& surroundings) {
  const auto [known, is_new] = known_.try_emplace(name);
  const auto& queue = surroundings.queue;
  // What waits in the queue can have run before.
  const bool may_run = queue && (queue->IsRunning() || known->second.is_at_work);
  if (is_new || may_run || (!queue && !known->second.IsDone())) {
    known->second = ReadStatus(name);
  }
  SLAVE_STATUS slave = known->second;
  Correct(slave, surroundings);
  if (slave.IsRunning()) {
    slave.percent = PercentDone(stack_.Run(name).LogFile()).value_or(0);
  }
  return slave;
}

SLAVE_STATUS STACK_WATCH::ReadStatus(const std::string& name) const {
  const SLAVE_FOLDER run = stack_.Run(name);
  // What holds the lock now may have ended before the record is read, which tells it then.
  const bool is_locked = IsLocked(run.LockFile());
  const SLAVE_RECORD record = ReadSlaveRecord(run);
  SLAVE_STATUS slave = {.name = name,
                        .state = record.state,
                        .reason = record.reason,
                        .is_at_work = is_locked,
                        .attempts = record.attempts};
  if (slave.IsDone() && !HasOutputs(run, record)) {
    slave.state = SLAVE_STATE::WAITING;
    slave.reason = "an output is gone, or is another file";
  }
  return slave;
}

bool STACK_WATCH::HasOutputs(const SLAVE_FOLDER& run, const SLAVE_RECORD& record) const {
  try {
    return PlaceOfOutputs(stack_, record, ReadSlavePlan(run)) == OUTPUTS_PLACE::FINAL;
  } catch (const STACK_ERROR&) {
    return false;
  }
}

void STACK_WATCH::Correct(SLAVE_STATUS& slave, const SURROUNDINGS& surroundings) {
  const auto& queue = surroundings.queue;
  if (slave.IsDone()) {
    return;  // whatever the queue still has of it
  }
  if (queue && !queue->IsRunning()) {
    slave.state = queue->state == QUEUE_STATE::WAITING ? SLAVE_STATE::WAITING : SLAVE_STATE::HELD;
    slave.reason = queue->reason;
    if (slave.is_at_work) {  // as on a node that Slurm has lost and that lives
      slave.reason += "; its last run is still at work";
    }
  } else if (queue && slave.IsWaiting()) {
    slave.state = SLAVE_STATE::RUNNING;
    slave.reason = queue->reason;
  } else if (slave.IsRunning() && !queue && !slave.is_at_work) {
    CorrectLost(slave, surroundings);
  } else if (slave.IsWaiting() && !queue && slave.reason.empty() && !surroundings.has_starter) {
    slave.reason = surroundings.queue_answers ? "in no queue" : "the queue does not answer";
  }
}

void STACK_WATCH::CorrectLost(SLAVE_STATUS& slave, const SURROUNDINGS& surroundings) {
  if (!surroundings.queue_answers) {
    slave.reason = "as it says; the queue does not answer";
  } else if (surroundings.has_starter) {
    slave.state = SLAVE_STATE::WAITING;
    slave.reason = "was lost; its start decides what becomes of it";
  } else {
    slave.state = SLAVE_STATE::DIED;
    slave.reason = "its machine, its job or its runner was lost";
  }
}
