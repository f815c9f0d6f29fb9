#pragma once

#include <deque>

#include "basics/child_process.h"
#include "description/stack_folder.h"
#include "queue/run_queue.h"

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

  REFUSED_SLAVES Submit(const std::vector<std::string>& names) override;
  void Attend() override;
  ACTIVE_SLAVES Active() const override;
  QUEUE_END EndOf(const std::string& name) override;
  std::chrono::seconds Patience() const override { return std::chrono::seconds(0); }
  void Cancel(const std::vector<std::string>& names) override;
  /// Until one of the runs has ended, or for a second.
  void Wait(SIGNALS& signals) override { signals.Wait(std::chrono::seconds(1)); }

 private:
  struct RUNNER {
    PRINTED_TEXT screen;
    CHILD_PROCESS process;
  };

  void BeginNext();

  STACK_FOLDER stack_;
  std::string program_;
  int concurrent_;
  int threads_;
  std::deque<std::string> waiting_;
  std::map<std::string, RUNNER> running_;
  std::map<std::string, std::string> last_words_;  ///< of runners that have ended
};
