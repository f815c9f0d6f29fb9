#include "start/lost_slaves.h"

#include <algorithm>
#include <filesystem>

#include "basics/file_lock.h"

namespace {

/// How a slave ends that was lost, for good.
SLAVE_STATE StateOf(QUEUE_END::KIND kind, bool is_stopped) {
  switch (kind) {
    case QUEUE_END::KIND::CANCELLED:
      return is_stopped ? SLAVE_STATE::STOPPED : SLAVE_STATE::CANCELLED;
    case QUEUE_END::KIND::TIMED_OUT:
      return SLAVE_STATE::TIMED_OUT;
    case QUEUE_END::KIND::LOST:
      break;
  }
  return is_stopped ? SLAVE_STATE::STOPPED : SLAVE_STATE::DIED;
}

}  // namespace

LOST_SLAVES::VERDICT LOST_SLAVES::Judge(const std::string& name) {
  const SLAVE_FOLDER run = stack_.Run(name);
  const SLAVE_RECORD record = ReadSlaveRecord(run);
  if (record.HasEnded()) {
    return VERDICT::ENDED;
  }
  const auto now = CLOCK::now();
  if (IsLocked(run.LockFile())) {
    return VERDICT::TOO_EARLY;  // its runner is gone, the program not yet
  }
  if (now - gone_since_.try_emplace(name, now).first->second < queue_.Patience()) {
    return VERDICT::TOO_EARLY;
  }
  gone_since_.erase(name);
  return Settle(run, record, queue_.EndOf(name));
}

LOST_SLAVES::VERDICT LOST_SLAVES::JudgeNotLaunched(const std::string& name,
                                                   const std::string& reason) {
  const SLAVE_FOLDER run = stack_.Run(name);
  return Settle(run, ReadSlaveRecord(run), {.text = reason});
}

LOST_SLAVES::VERDICT LOST_SLAVES::Settle(const SLAVE_FOLDER& run, SLAVE_RECORD record,
                                         const QUEUE_END& end) {
  const bool is_stopped = std::filesystem::exists(run.StopFile());
  if (end.kind == QUEUE_END::KIND::LOST && !is_stopped && MaySubmitAgain(run, record)) {
    return VERDICT::AGAIN;
  }
  RemovePartialOutputs(ReadSlavePlan(run).Outputs());
  record.state = StateOf(end.kind, is_stopped && record.attempts.empty());
  // What the runner itself has noted goes before.
  record.reason += (record.reason.empty() ? "" : "; ") +
                   (record.state == SLAVE_STATE::STOPPED ? "STOP file" : end.text);
  if (record.reason.empty()) {
    record.reason = "its machine or its runner was lost";
  }
  for (RUN_ATTEMPT& attempt : record.attempts) {
    if (attempt.ended == 0.0) {
      attempt.ended = SecondsSince1970();
      attempt.how = record.reason;
      attempt.died = end.kind == QUEUE_END::KIND::LOST;
    }
  }
  WriteSlaveRecord(run, record);
  return VERDICT::ENDED;
}

bool LOST_SLAVES::MaySubmitAgain(const SLAVE_FOLDER& run, const SLAVE_RECORD& record) {
  const SLAVE_PLAN plan = ReadSlavePlan(run);
  constexpr int launches = 2;
  const int limit = record.attempts.empty() ? std::max(launches, plan.retries) : plan.retries;
  return record.MayRetry(plan) && submitted_again_[run.Name()]++ < limit;
}
