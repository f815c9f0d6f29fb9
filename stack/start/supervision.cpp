#include "start/supervision.h"

#include <filesystem>
#include <iostream>
#include <utility>

#include "description/stack_description.h"
#include "run/slave_record.h"

void SUPERVISION::Accompany(std::set<std::string> names) {
  while (!names.empty() && signals_.EndAsked() == 0) {
    const ACTIVE_SLAVES active = queue_.Active();
    if (active) {
      std::erase_if(names, [&](const std::string& name) {
        return !active->contains(name) && HasEnded(name);
      });
      if (const auto died = std::exchange(died_, {}); !died.empty()) {
        SubmitAgain(died);
      }
    }
    if (!names.empty()) {
      ShowNowAndThen(active);
      queue_.Wait(signals_);
    }
  }
}

void SUPERVISION::SubmitAgain(const std::vector<std::string>& names) {
  try {
    queue_.Submit(names);
  } catch (const STACK_ERROR& error) {
    // They are still not in the queue next time, which counts as one more death.
    std::cerr << error.what() << std::endl;
  }
}

void SUPERVISION::ShowNowAndThen(const ACTIVE_SLAVES& active) {
  constexpr std::chrono::seconds interval(1);
  const auto now = std::chrono::steady_clock::now();
  if (now - shown_ >= interval) {
    shown_ = now;
    show_(active);
  }
}

bool SUPERVISION::HasEnded(const std::string& name) {
  const SLAVE_FOLDER run = stack_.Run(name);
  SLAVE_RECORD record = ReadSlaveRecord(run);
  if (record.HasEnded()) {
    return true;
  }
  const bool is_stopped = std::filesystem::exists(run.StopFile());
  if (record.state == RUN_STATE::WAITING) {
    record.state = is_stopped ? RUN_STATE::STOPPED : RUN_STATE::CANCELLED;
    record.reason = is_stopped ? "STOP file" : "left the queue before it began";
  } else if (!is_stopped && MaySubmitAgain(run, record)) {
    died_.push_back(name);
    return false;
  } else {
    RemovePartialOutputs(run, ReadSlavePlan(run));
    record.state = RUN_STATE::DIED;
    record.reason = "its machine, its job or its runner was lost";
  }
  WriteSlaveRecord(run, record);
  return true;
}

bool SUPERVISION::MaySubmitAgain(const SLAVE_FOLDER& run, const SLAVE_RECORD& record) {
  const SLAVE_PLAN plan = ReadSlavePlan(run);
  // A runner that cannot write its record counts no attempts.
  return record.MayRetry(plan) && submitted_again_[run.Name()]++ < plan.retries;
}
