#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "support/process.h"
#include "support/scene.h"
#include "support/temporary_directory.h"

using NAMES = std::set<std::string>;

/// Names of slaves from the first to the last number: s01, s02, ...
NAMES Slaves(int first, int last);
NAMES Without(NAMES names, const NAMES& others);

/// A stack whose slaves have the mapping matrices and pools in common, and images of their own.
///
/// In place of resample itself a script is started, which notes the node, itself and its parent in
/// "begun/NAME", waits until "open/NAME" or "open/all" exists, and becomes resample then.
class STACK_TEST : public testing::Test {
 protected:
  STACK_TEST();

  /// Where the program finds what it needs besides the stack.
  virtual std::map<std::string, std::string> Environment() const { return {}; }
  /// What becomes of its process before it starts.
  virtual bool PrepareProcess() const { return true; }

  /// Below a folder of a name that Slurm would expand.
  std::filesystem::path Path(const std::string& name) const { return folder_.Path() / "%j" / name; }

  /// Makes inputs and description of so many slaves; those named have large outputs, which take
  /// more than a second.
  void MakeStack(int count, const NAMES& large);

  /// Gives all that there is to another user, and the way to it to all.
  void GiveTo(unsigned user) const;

  /// Gives a slave of the description another value for a parameter.
  void ChangeParameter(const std::string& slave, const std::string& name,
                       const nlohmann::json& value);

  /// A command of the program on the stack, at work.
  class COMMAND {
   public:
    COMMAND(const STACK_TEST& stack, const std::vector<std::string>& arguments)
        : process_(Settings(stack, arguments)) {}

    /// Its exit status; -1 when a signal ended it.
    int Wait() {
      end = process_.Wait();
      return end.exit_status;
    }
    void Signal(int number) const { process_.Signal(number); }

    PROCESS_END end;

   private:
    PROCESS_SETTINGS Settings(const STACK_TEST& stack, std::vector<std::string> arguments) const;

    TEMPORARY_DIRECTORY directory_;
    PROCESS process_;
  };

  /// `resample-stack` on the description, with the script for resample.
  std::unique_ptr<COMMAND> Start(const std::vector<std::string>& options) const;

  nlohmann::json Status() const;
  /// The slaves that the program says are in this state.
  NAMES InState(const std::string& state) const;
  nlohmann::json Slave(const std::string& name) const;

  void Open(const std::string& name) const { WriteFile(Path("open") / name, ""); }
  void Open(const NAMES& some) const;
  void CloseAll() const;

  /// How often the slave's run has begun; a line "NODE PROCESS STARTER" each.
  std::vector<std::string> Begun(const std::string& name) const;
  std::map<std::string, std::size_t> AllBegun() const;
  testing::AssertionResult AwaitBegun(const NAMES& some, std::size_t times = 1) const;
  testing::AssertionResult AwaitOk(const NAMES& some) const;

  /// A run that was stopped by SIGSTOP, and the runner that started it.
  struct STOPPED_RUN {
    pid_t process;
    pid_t starter;
  };
  /// Waits until a run with a large output computes, and holds it there.
  STOPPED_RUN Hold(const std::string& name) const;

  /// Expects that these slaves and no others have outputs under their final names, that these are
  /// what a single run makes, and that nothing partial is left.
  void ExpectOutputs(const NAMES& some) const;

  NAMES names;

 private:
  static constexpr int large_size = 300;
  /// Sanitizers make runs slow.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  static constexpr int large_kernel = 32;
#else
  static constexpr int large_kernel = 64;
#endif

  void WriteProgram() const;
  /// Runs resample by itself on the slave as the description gives it, with outputs in "single".
  void RunSingle(const std::string& name) const;

  TEMPORARY_DIRECTORY folder_;
  nlohmann::json description_;
};
