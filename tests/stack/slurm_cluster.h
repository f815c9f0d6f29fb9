#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/process.h"
#include "support/temporary_directory.h"

/// The batch system Slurm on this machine alone, for one test: munged, slurmctld and a slurmd a
/// node, on loopback, with keys, sockets, ports, state and logs of their own, run by the current
/// user. Nodes are called n1 and n2 and have two processors each; the partition "hidden" is shown
/// to nobody but this user.
///
/// All processes end with it, those of jobs included. When the test has failed, the ends of the
/// daemons' logs are shown then. Members throw std::runtime_error, with the same ends in it, when
/// something does not come about.
class SLURM_CLUSTER {
 public:
  static constexpr int processors_a_node = 2;

  /// The first program that a cluster needs and this machine lacks.
  static std::optional<std::string> MissingProgram();

  struct SETTINGS {
    std::string configuration{};  ///< further lines of slurm.conf
    /// A folder that the second node does not have, as when it is not mounted there; only root can
    /// hide one.
    std::filesystem::path hidden_folder{};
  };

  /// Two nodes. Returns when they can take jobs.
  explicit SLURM_CLUSTER(const SETTINGS& settings);
  ~SLURM_CLUSTER();
  SLURM_CLUSTER(const SLURM_CLUSTER&) = delete;
  SLURM_CLUSTER& operator=(const SLURM_CLUSTER&) = delete;

  /// What a process needs in its environment to find this cluster and its commands.
  std::map<std::string, std::string> Environment() const;
  /// Runs one of Slurm's commands and returns what it printed; throws when it fails.
  std::string Command(const std::string& name, const std::vector<std::string>& arguments) const;
  /// Lines of `squeue`, one a job or array task that has not ended, in a format of its own.
  std::vector<std::string> Queue(const std::string& format) const;
  /// Waits until no job is left.
  void AwaitIdle() const;

  /// The controller saves its state and ends; jobs go on, commands find nobody meanwhile.
  void StopController();
  /// Returns when it answers.
  void StartController();

  /// What a failure of the machine is: everything on the node is gone at once. The controller takes
  /// some seconds to notice, and puts the node's jobs back into the queue unless they forbid it.
  void KillNode(const std::string& name);
  /// Returns when the node can take jobs.
  void StartNode(const std::string& name);
  /// The state of a node, such as "idle", "mixed", "allocated" or "down*".
  std::string NodeState(const std::string& name) const;

 private:
  class DAEMON;

  static constexpr int nodes = 2;

  void WriteConfiguration() const;
  void StartDaemon(const std::string& name, const std::string& program,
                   const std::vector<std::string>& arguments);
  PROCESS_END Run(const std::string& name, const std::vector<std::string>& arguments) const;
  /// Waits as WaitUntil does, and throws what did not come about.
  void Await(const std::string& what, const std::function<bool()>& condition) const;
  [[noreturn]] void Fail(const std::string& what) const;
  std::string LogEnds() const;

  SETTINGS settings_;
  TEMPORARY_DIRECTORY directory_;
  std::map<std::string, std::unique_ptr<DAEMON>> daemons_;
};
