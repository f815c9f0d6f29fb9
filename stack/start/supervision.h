#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "queue/run_queue.h"
#include "run/signals.h"
#include "run/slave_record.h"
#include "run/stack_folder.h"

/// Accompanies slaves that a queue has until each has ended, and submits those again whose runner
/// died without a word, as with its machine, as often as their plans say.
class SUPERVISION {
 public:
  /// Is given what the queue says, and tells how it goes. It is called now and then only, because
  /// it reads the records of many slaves.
  using SHOW = std::function<void(const ACTIVE_SLAVES& active)>;

  SUPERVISION(STACK_FOLDER stack, RUN_QUEUE& queue, SIGNALS& signals, SHOW show)
      : stack_(std::move(stack)), queue_(queue), signals_(signals), show_(std::move(show)) {}

  /// Returns when all have ended, or a signal asks this process for its end.
  void Accompany(std::set<std::string> names);

 private:
  void SubmitAgain(const std::vector<std::string>& names);
  void ShowNowAndThen(const ACTIVE_SLAVES& active);
  /// Whether the slave, which is not in the queue any more, has ended for good.
  bool HasEnded(const std::string& name);
  bool MaySubmitAgain(const SLAVE_FOLDER& run, const SLAVE_RECORD& record);

  STACK_FOLDER stack_;
  RUN_QUEUE& queue_;
  SIGNALS& signals_;
  SHOW show_;
  std::chrono::steady_clock::time_point shown_{};
  std::vector<std::string> died_;
  std::map<std::string, int> submitted_again_;
};
