#include "queue/local_queue.h"

#include <cstddef>
#include <iterator>
#include <system_error>

REFUSED_SLAVES LOCAL_QUEUE::Submit(const std::vector<std::string>& names) {
  waiting_.insert(waiting_.end(), names.begin(), names.end());
  return {};
}

void LOCAL_QUEUE::Attend() {
  for (auto run = running_.begin(); run != running_.end();) {
    if (run->second.process.End()) {
      last_words_[run->first] = run->second.screen.Text();
      run = running_.erase(run);
    } else {
      run = std::next(run);
    }
  }
  while (!waiting_.empty() && running_.size() < static_cast<std::size_t>(concurrent_)) {
    BeginNext();
  }
}

ACTIVE_SLAVES LOCAL_QUEUE::Active() const {
  std::map<std::string, QUEUE_ENTRY> active;
  for (const auto& [name, runner] : running_) {
    active[name] = {.state = QUEUE_STATE::RUNNING};
  }
  for (const std::string& name : waiting_) {
    active[name] = {.state = QUEUE_STATE::WAITING};
  }
  return active;
}

QUEUE_END LOCAL_QUEUE::EndOf(const std::string& name) {
  const std::string& words = last_words_[name];
  return {.text = words.substr(0, words.find('\n'))};
}

void LOCAL_QUEUE::Cancel(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    std::erase(waiting_, name);
    running_.erase(name);
  }
}

void LOCAL_QUEUE::BeginNext() {
  const std::string name = waiting_.front();
  waiting_.pop_front();
  try {
    PRINTED_TEXT screen;
    CHILD_PROCESS process({.command = {program_, "run", stack_.Run(name).Path().string()},
                           .screen = screen.Descriptor(),
                           .environment = {{"PARALLEL", std::to_string(threads_)}}});
    running_.emplace(name, RUNNER{std::move(screen), std::move(process)});
  } catch (const std::system_error& error) {
    last_words_[name] = error.what();
  }
}
