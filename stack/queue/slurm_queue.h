#pragma once

#include <filesystem>

#include "queue/run_queue.h"
#include "run/stack_folder.h"

/// Runs as tasks of Slurm job arrays. Slurm alone knows what is submitted: each job's comment names
/// the list of its slaves, so that any later process finds them again.
class SLURM_QUEUE final : public RUN_QUEUE {
 public:
  struct SETTINGS {
    std::string program;  ///< resample-stack itself
    std::string job_name;
    int concurrent = 0;                ///< tasks at a time; 0: no limit
    std::vector<std::string> options;  ///< of sbatch
  };

  SLURM_QUEUE(STACK_FOLDER stack, SETTINGS settings)
      : stack_(std::move(stack)), settings_(std::move(settings)) {}

  /// As one job array. Throws STACK_ERROR with what sbatch says.
  void Submit(const std::vector<std::string>& names) override;
  /// Nothing while the controller does not answer.
  ACTIVE_SLAVES Active() override;
  /// Throws STACK_ERROR with what scancel says.
  void CancelWaiting() override;
  void Wait(SIGNALS& signals) const override;

 private:
  /// One task of one of the stack's arrays, as squeue tells it.
  struct TASK {
    std::string job;
    std::size_t index = 0;
    bool is_waiting = false;
    std::filesystem::path slave_list;
  };

  std::optional<std::vector<TASK>> Tasks() const;
  std::filesystem::path NewSlaveList() const;

  STACK_FOLDER stack_;
  SETTINGS settings_;
};
