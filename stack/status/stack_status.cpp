#include "status/stack_status.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>

#include "description/stack_description.h"
#include "run/file_lock.h"
#include "run/run_log_end.h"
#include "run/text_file.h"

namespace {

using JSON = nlohmann::json;

class STATUS_READER {
 public:
  STATUS_READER(const STACK_FOLDER& stack, const STACK_START& start,
                const std::optional<std::map<std::string, QUEUE_STATE>>& active)
      : stack_(stack), start_(start), active_(active), has_starter_(IsLocked(stack.LockFile())) {}

  STACK_STATUS Read() {
    status_.name = start_.name;
    for (const std::string& name : start_.slaves) {
      status_.slaves.push_back(Slave(name));
      Count(status_.slaves.back());
    }
    EstimateRate();
    return std::move(status_);
  }

 private:
  SLAVE_STATUS Slave(const std::string& name) {
    const SLAVE_FOLDER run = stack_.Run(name);
    SLAVE_RECORD record = ReadSlaveRecord(run);
    if (record.state == RUN_STATE::RUNNING && !IsActive(run)) {
      // It may have ended meanwhile.
      record = ReadSlaveRecord(run);
      if (record.state == RUN_STATE::RUNNING) {
        record.state = RUN_STATE::DIED;
        record.reason = "its machine, its job or its runner was lost";
      }
    }
    SLAVE_STATUS slave{.name = name,
                       .state = record.state,
                       .reason = record.reason,
                       .percent = 0,
                       .attempts = record.attempts};
    if (slave.IsRunning()) {
      slave.percent = PercentDone(run.LogFile()).value_or(0);
    }
    return slave;
  }

  bool IsActive(const SLAVE_FOLDER& run) const {
    return IsInQueue(run.Name()) || IsLocked(run.LockFile());
  }

  bool IsInQueue(const std::string& name) const { return active_ && active_->contains(name); }

  void Count(const SLAVE_STATUS& slave) {
    if (slave.IsDone()) {
      ++status_.done;
      done_since_start_ += !slave.attempts.empty() && slave.attempts.back().ended >= start_.begun;
    } else if (slave.IsRunning()) {
      ++status_.running;
      parts_of_running_ += slave.percent / 100.0;
    } else if (slave.HasFailed()) {
      ++status_.failed;
    } else {
      ++status_.waiting;
      if (slave.state == RUN_STATE::WAITING) {
        status_.queued += IsInQueue(slave.name) || has_starter_;
      }
    }
    for (const RUN_ATTEMPT& attempt : slave.attempts) {
      last_end_ = std::max(last_end_, attempt.ended);
    }
  }

  void EstimateRate() {
    const double now =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    const double seconds = (status_.IsActive() ? now : last_end_) - start_.begun;
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

  const STACK_FOLDER& stack_;
  const STACK_START& start_;
  const std::optional<std::map<std::string, QUEUE_STATE>>& active_;
  bool has_starter_;
  STACK_STATUS status_;
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

STACK_STATUS ReadStackStatus(const STACK_FOLDER& stack, const STACK_START& start,
                             const std::optional<std::map<std::string, QUEUE_STATE>>& active) {
  return STATUS_READER(stack, start, active).Read();
}
