#pragma once

#include <chrono>
#include <map>
#include <string>

#include "description/stack_folder.h"
#include "queue/run_queue.h"
#include "run/slave_record.h"

/// Decides about slaves that have left the queue.
class LOST_SLAVES {
 public:
  LOST_SLAVES(STACK_FOLDER stack, RUN_QUEUE& queue) : stack_(std::move(stack)), queue_(queue) {}

  enum class VERDICT { ENDED, TOO_EARLY, AGAIN };

  /// Of a slave that is not in the queue: it has ended, as its record tells, or now does by what
  /// the queue says of it, after its patience for records that come late; or it was lost and may be
  /// submitted again. Throws std::exception when plan or record cannot be read or written.
  VERDICT Judge(const std::string& name);
  /// Of one that was taken out of the queue because it would have stayed there for ever.
  VERDICT JudgeNotLaunched(const std::string& name, const std::string& reason);
  /// The slave is in the queue again.
  void Forget(const std::string& name) { gone_since_.erase(name); }

 private:
  using CLOCK = std::chrono::steady_clock;

  VERDICT Settle(const SLAVE_FOLDER& run, SLAVE_RECORD record, const QUEUE_END& end);
  /// A slave that never began is submitted a few times, one that died as often as its plan says.
  bool MaySubmitAgain(const SLAVE_FOLDER& run, const SLAVE_RECORD& record);

  STACK_FOLDER stack_;
  RUN_QUEUE& queue_;
  std::map<std::string, CLOCK::time_point> gone_since_;
  std::map<std::string, int> submitted_again_;
};
