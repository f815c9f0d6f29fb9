#pragma once

#include <deque>

#include "queue/run_queue.h"
#include "run/child_process.h"
#include "run/stack_folder.h"

/// Runs on this machine, so many at a time. They end, cancelled, with this process or with the
/// queue.
class LOCAL_QUEUE final : public RUN_QUEUE {
 public:
  /// `program`: resample-stack itself; `threads`: worker threads of a run, where its parameters do
  /// not say it.
  LOCAL_QUEUE(STACK_FOLDER stack, std::string program, int concurrent, int threads)
      : stack_(std::move(stack)),
        program_(std::move(program)),
        concurrent_(concurrent),
        threads_(threads) {}

  void Submit(const std::vector<std::string>& names) override;
  /// Also notes who has ended, and lets others begin in their place.
  std::optional<std::map<std::string, QUEUE_STATE>> Active() override;
  void CancelWaiting() override { waiting_.clear(); }
  /// Until one of the runs has ended, or for a second.
  void Wait(SIGNALS& signals) const override { signals.Wait(std::chrono::seconds(1)); }

 private:
  void BeginNext();

  STACK_FOLDER stack_;
  std::string program_;
  int concurrent_;
  int threads_;
  std::deque<std::string> waiting_;
  std::map<std::string, CHILD_PROCESS> running_;
};
