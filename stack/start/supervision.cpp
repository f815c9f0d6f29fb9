#include "start/supervision.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "basics/stack_error.h"

void SUPERVISION::Accompany(std::set<std::string> names, const REFUSED_SLAVES& refused) {
  names_ = std::move(names);
  to_submit_ = refused.names;
  while (!(names_.empty() && to_submit_.empty()) && signals_.EndAsked() == 0) {
    queue_.Attend();
    const ACTIVE_SLAVES active = queue_.Active();
    if (active) {
      LookAt(*active);
      SubmitAgain(active->empty());
    }
    if (!(names_.empty() && to_submit_.empty())) {
      ShowNowAndThen(active);
      queue_.Wait(signals_);
    }
  }
}

void SUPERVISION::LookAt(const std::map<std::string, QUEUE_ENTRY>& active) {
  for (const std::string& name : std::set<std::string>(names_)) {
    if (active.contains(name)) {
      lost_.Forget(name);
    } else {
      SettleOne(name, [&] { return lost_.Judge(name); });
    }
  }
  CancelNotLaunched(active);
}

void SUPERVISION::SettleOne(const std::string& name,
                            const std::function<LOST_SLAVES::VERDICT()>& judge) {
  try {
    const LOST_SLAVES::VERDICT verdict = judge();
    if (verdict == LOST_SLAVES::VERDICT::TOO_EARLY) {
      return;
    }
    if (verdict == LOST_SLAVES::VERDICT::AGAIN) {
      to_submit_.push_back(name);
    }
  } catch (const std::exception& error) {
    troubles_[name] = error.what();
  }
  names_.erase(name);
}

void SUPERVISION::CancelNotLaunched(const std::map<std::string, QUEUE_ENTRY>& active) {
  std::vector<std::string> names;
  for (const auto& [name, entry] : active) {
    if (entry.state == QUEUE_STATE::NOT_LAUNCHED && names_.contains(name)) {
      names.push_back(name);
    }
  }
  try {
    queue_.Cancel(names);
  } catch (const STACK_ERROR&) {
    return;  // they are still there next time
  }
  for (const std::string& name : names) {
    SettleOne(name, [&] { return lost_.JudgeNotLaunched(name, active.at(name).reason); });
  }
}

void SUPERVISION::SubmitAgain(bool is_queue_empty) {
  const auto now = std::chrono::steady_clock::now();
  if (to_submit_.empty() || (now < submission_due_ && !is_queue_empty)) {
    return;
  }
  const REFUSED_SLAVES refused = queue_.Submit(to_submit_);
  for (const std::string& name : std::exchange(to_submit_, refused.names)) {
    if (std::find(to_submit_.begin(), to_submit_.end(), name) == to_submit_.end()) {
      names_.insert(name);
    }
  }
  if (is_queue_empty) {
    for (const std::string& name : std::exchange(to_submit_, {})) {
      troubles_[name] = refused.reason;
    }
  }
  // A limit of the queue has room again once others have ended.
  constexpr std::chrono::seconds interval(30);
  submission_due_ = refused.names.empty() ? now : now + interval;
}

void SUPERVISION::ShowNowAndThen(const ACTIVE_SLAVES& active) {
  constexpr std::chrono::seconds interval(1);
  const auto now = std::chrono::steady_clock::now();
  if (now - shown_ >= interval) {
    shown_ = now;
    show_(active);
  }
}
