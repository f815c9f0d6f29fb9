#pragma once

#include <filesystem>
#include <set>

#include "description/stack_folder.h"
#include "queue/run_queue.h"

/// Throws STACK_ERROR for an option of sbatch by which the queue would not find its tasks again.
void CheckSbatchOptions(const std::vector<std::string>& options);

/// Runs as tasks of Slurm job arrays. Slurm alone knows what is submitted: each job's comment has
/// the stack's identity and the list of its slaves, so that any later process finds them again.
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

  /// As job arrays, as few as Slurm's limit allows. Refuses slaves for which sbatch fails.
  REFUSED_SLAVES Submit(const std::vector<std::string>& names) override;
  void Attend() override {}
  /// Nothing while the controller does not answer.
  ACTIVE_SLAVES Active() const override;
  /// The same of a stack, of which nothing is active that was never submitted.
  static ACTIVE_SLAVES ActiveOf(const STACK_FOLDER& stack);
  /// Asks Slurm. A node on which a task was lost gets none of those that are submitted later.
  QUEUE_END EndOf(const std::string& name) override;
  std::chrono::seconds Patience() const override { return std::chrono::seconds(5); }
  void Cancel(const std::vector<std::string>& names) override;
  /// A little at first, since small stacks are soon done.
  void Wait(SIGNALS& signals) override;

  /// Lets none begin that waits; those that run go on. Throws STACK_ERROR with what scancel says.
  void CancelWaiting() const;
  /// Removes scripts and lists of arrays that are not in the queue any more, and what their tasks
  /// printed. Returns how many files went; none while the controller does not answer.
  int RemoveOldFiles() const;

 private:
  /// One task of one of the stack's arrays, as squeue tells it.
  struct TASK {
    std::string job;
    std::string index;
    std::string list;   ///< name of the list of the array's slaves
    std::string slave;  ///< on its line there; empty when the list is gone
    QUEUE_ENTRY entry;

    std::string Id() const { return job + "_" + index; }
  };

  std::optional<std::vector<TASK>> Tasks() const;
  /// Of each slave the task that was submitted last, as the lists of the arrays tell it.
  std::map<std::string, std::string> LastTasks() const;
  void SubmitArray(const std::vector<std::string>& names, const std::string& job_before);
  std::vector<std::string> Command(std::size_t tasks, const std::string& list,
                                   const std::string& job_before) const;
  /// By their numbers, of which later ones are higher.
  std::map<int, std::filesystem::path> SlaveLists() const;
  std::filesystem::path NewSlaveList() const;

  STACK_FOLDER stack_;
  SETTINGS settings_;
  std::string last_job_;
  std::set<std::string> bad_nodes_;
  std::chrono::milliseconds interval_{500};  ///< between two questions
};
