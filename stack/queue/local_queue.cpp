#include "queue/local_queue.h"

#include <cstddef>
#include <iterator>

void LOCAL_QUEUE::Submit(const std::vector<std::string>& names) {
  waiting_.insert(waiting_.end(), names.begin(), names.end());
}

std::optional<std::map<std::string, QUEUE_STATE>> LOCAL_QUEUE::Active() {
  for (auto run = running_.begin(); run != running_.end();) {
    run = run->second.End() ? running_.erase(run) : std::next(run);
  }
  while (!waiting_.empty() && running_.size() < static_cast<std::size_t>(concurrent_)) {
    BeginNext();
  }
  std::map<std::string, QUEUE_STATE> active;
  for (const auto& [name, process] : running_) {
    active[name] = QUEUE_STATE::RUNNING;
  }
  for (const std::string& name : waiting_) {
    active[name] = QUEUE_STATE::WAITING;
  }
  return active;
}

void LOCAL_QUEUE::BeginNext() {
  const std::string name = waiting_.front();
  waiting_.pop_front();
  running_.emplace(name,
                   CHILD_SETTINGS{.command = {program_, "run", stack_.Run(name).Path().string()},
                                  .environment = {{"PARALLEL", std::to_string(threads_)}}});
}
