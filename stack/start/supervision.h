#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "basics/signals.h"
#include "description/stack_folder.h"
#include "queue/run_queue.h"
#include "start/lost_slaves.h"

/// Accompanies slaves through a queue until each has ended, and submits those again that were lost,
/// as with their machine. What goes wrong with one of them does not stop the others.
class SUPERVISION {
 public:
  /// Is given what the queue says, and tells how it goes. It is called now and then only, because
  /// it reads the records of many slaves.
  using SHOW = std::function<void(const ACTIVE_SLAVES& active)>;

  SUPERVISION(STACK_FOLDER stack, RUN_QUEUE& queue, SIGNALS& signals, SHOW show)
      : queue_(queue), signals_(signals), show_(std::move(show)), lost_(std::move(stack), queue) {}

  /// Returns when all have ended, or a signal asks this process for its end. `names` are those that
  /// the queue has; `refused` those that it did not take, which it is asked again to take as it
  /// gets empty.
  void Accompany(std::set<std::string> names, const REFUSED_SLAVES& refused);

  /// Slaves that nobody goes on with, and why: the queue does not take them, or their folders
  /// cannot be read or written.
  const std::map<std::string, std::string>& Troubles() const noexcept { return troubles_; }

 private:
  void LookAt(const std::map<std::string, QUEUE_ENTRY>& active);
  /// Does with a slave that left the queue what `judge` says.
  void SettleOne(const std::string& name, const std::function<LOST_SLAVES::VERDICT()>& judge);
  /// Takes those out of the queue that would stay in it for ever; they count as lost then.
  void CancelNotLaunched(const std::map<std::string, QUEUE_ENTRY>& active);
  void SubmitAgain(bool is_queue_empty);
  void ShowNowAndThen(const ACTIVE_SLAVES& active);

  RUN_QUEUE& queue_;
  SIGNALS& signals_;
  SHOW show_;
  LOST_SLAVES lost_;
  std::set<std::string> names_;         ///< that the queue has
  std::vector<std::string> to_submit_;  ///< which it is to get again
  std::map<std::string, std::string> troubles_;
  std::chrono::steady_clock::time_point shown_{};
  std::chrono::steady_clock::time_point submission_due_{};
};
