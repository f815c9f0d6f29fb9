#include "start/preparation.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>

#include "app/program_version.h"
#include "app/run_parameters.h"
#include "basics/file_lock.h"
#include "basics/stack_error.h"
#include "check_run/run_check.h"
#include "control/controller_ifc.h"
#include "run/run_log_end.h"
#include "run/slave_record.h"

namespace {

namespace fs = std::filesystem;

/// What a look at one slave's run has found.
struct SLAVE_FINDINGS {
  std::string failure;  ///< the first one; empty when the run can begin
  std::vector<std::string> warnings;
  std::vector<EXPECTED_FILE> outputs;
};

SLAVE_FINDINGS CheckSlave(const SLAVE_FOLDER& folder) {
  std::array arguments = {std::string("resample"),
                          std::string("-pid"),
                          folder.Name(),
                          std::string("-status"),
                          folder.StatusDirectory().string(),
                          std::string("-pcf"),
                          folder.ConfigurationFile().string()};
  std::array<char*, arguments.size() + 1> pointers{};
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    pointers[i] = arguments[i].data();
  }
  CONTROLLER_IFC controller;
  controller.ProtectFiles(RunFileParameters());
  FINDINGS findings;
  // A rough share of the pixels will do for the disk's room.
  constexpr std::int64_t pixels_looked_at = 1 << 14;
  RUN_CHECK check(controller, findings, pixels_looked_at);
  findings.Take(
      [&] { controller.InitLookups(static_cast<int>(arguments.size()), pointers.data()); });
  findings.Take([&] { check.Execute(ProgramVersion()); });

  SLAVE_FINDINGS result;
  if (!findings.Failures().empty()) {
    const FINDINGS::FAILURE& first = findings.Failures().front();
    result.failure = first.empty() ? "fails" : ReasonAmong(first);
  }
  result.warnings = findings.Warnings();
  if (check.Figures()) {
    result.outputs = check.Figures()->outputs;
  }
  return result;
}

SLAVE_PLAN PlanOf(const STACK_DESCRIPTION& stack, const STACK_SLAVE& slave, const WISHES& wishes) {
  return {.program = wishes.program.path,
          .version = wishes.program.version,
          .build = wishes.program.build,
          .parameters = slave.parameters,
          .base = stack.base.string(),
          .scratch = wishes.scratch,
          .retries = wishes.retries};
}

/// Whether the run was prepared for what this plan makes.
bool IsPreparedFor(const SLAVE_FOLDER& run, const SLAVE_PLAN& plan) {
  try {
    return ReadSlavePlan(run).MakesTheSame(plan);
  } catch (const STACK_ERROR&) {
    return false;
  }
}

/// Runs that are ending, as those of a start that was killed, have a moment for it. Throws
/// STACK_ERROR when there is still one.
void AwaitNoRun(const SLAVE_FOLDER& run) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (IsLocked(run.LockFile())) {
    if (std::chrono::steady_clock::now() > end) {
      throw STACK_ERROR("a run that the queue does not know is still at work on it");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

class PREPARATION {
 public:
  PREPARATION(const STACK_DESCRIPTION& stack, const WISHES& wishes)
      : stack_(stack), folder_(stack.directory), wishes_(wishes) {}

  STACK_WORK Prepare(const std::map<std::string, QUEUE_ENTRY>& active) {
    for (const STACK_SLAVE& slave : WantedSlaves(stack_, wishes_.only)) {
      if (active.contains(slave.name)) {
        work_.active.push_back(slave.name);
        continue;
      }
      try {
        Prepare(slave);
      } catch (const std::exception& error) {
        work_.troubles[slave.name] = error.what();
      }
    }
    RemarkOnDisks();
    return std::move(work_);
  }

 private:
  void Prepare(const STACK_SLAVE& slave) {
    const SLAVE_FOLDER run = folder_.Run(slave.name);
    const SLAVE_PLAN plan = PlanOf(stack_, slave, wishes_);
    AwaitNoRun(run);
    if (wishes_.again) {
      fs::remove(run.OkFile());
    }
    if (CompletePublication(folder_, run, plan)) {
      NoteSuccess(run, plan);
      ++work_.finished;
      return;
    }
    fs::create_directories(run.Path());
    fs::remove(run.OkFile());
    WriteSlavePlan(run, plan);
    WriteConfigurationFile(run, plan.RunParameters());
    Check(run);
  }

  /// Whoever should have noted it may have been killed, or have found no way to its final name; and
  /// a stack that was moved has new paths.
  void NoteSuccess(const SLAVE_FOLDER& run, const SLAVE_PLAN& plan) const {
    SLAVE_RECORD record = ReadSlaveRecord(run);
    if (record.state != SLAVE_STATE::SUCCEEDED || record.stack != folder_.Identity() ||
        !IsPreparedFor(run, plan)) {
      record.state = SLAVE_STATE::SUCCEEDED;
      record.reason = "";
      record.stack = folder_.Identity();
      record.outputs = StatesOfOutputs(plan.Outputs());
      WriteSlaveRecord(run, record);
      WriteSlavePlan(run, plan);
    }
  }

  void Check(const SLAVE_FOLDER& run) {
    SLAVE_RECORD record;
    if (fs::exists(run.StopFile())) {
      record.state = SLAVE_STATE::STOPPED;
      record.reason = "STOP file";
      WriteSlaveRecord(run, record);
      return;
    }
    const SLAVE_FINDINGS found = CheckSlave(run);
    if (found.failure.empty()) {
      work_.to_run.push_back(run.Name());
      outputs_.insert(outputs_.end(), found.outputs.begin(), found.outputs.end());
    } else {
      record.state = SLAVE_STATE::FAILED;
      record.reason = found.failure;
      CONTROLLER_IFC::WriteStatusFile(run.ErrorFile().string(), EXIT_FAILURE);
      Remark(run, "would fail: " + found.failure);
    }
    for (const std::string& warning : found.warnings) {
      Remark(run, "warning: " + warning);
    }
    WriteSlaveRecord(run, record);
  }

  void Remark(const SLAVE_FOLDER& run, const std::string& text) {
    work_.remarks[text].push_back(run.Name());
  }

  void RemarkOnDisks() {
    for (const DISK_NEED& need : DiskNeeds(outputs_)) {
      if (need.written > need.available) {
        work_.remarks["warning: the outputs on the disk of " + need.path + " take " +
                      std::to_string(need.written) + " bytes, " + std::to_string(need.available) +
                      " are free"];
      }
    }
  }

  const STACK_DESCRIPTION& stack_;
  STACK_FOLDER folder_;
  const WISHES& wishes_;
  STACK_WORK work_;
  std::vector<EXPECTED_FILE> outputs_;
};

}  // namespace

std::vector<STACK_SLAVE> WantedSlaves(const STACK_DESCRIPTION& stack,
                                      const std::set<std::string>& only) {
  std::set<std::string> missing = only;
  std::vector<STACK_SLAVE> wanted;
  for (const STACK_SLAVE& slave : stack.slaves) {
    if (only.empty() || missing.erase(slave.name) != 0) {
      wanted.push_back(slave);
    }
  }
  if (!missing.empty()) {
    throw STACK_ERROR("no slave of the stack has the name " + *missing.begin());
  }
  return wanted;
}

std::vector<std::string> OutdatedSlaves(const STACK_DESCRIPTION& stack, const WISHES& wishes,
                                        const std::map<std::string, QUEUE_ENTRY>& active) {
  const STACK_FOLDER folder(stack.directory);
  std::vector<std::string> outdated;
  for (const STACK_SLAVE& slave : WantedSlaves(stack, wishes.only)) {
    if (active.contains(slave.name) &&
        !IsPreparedFor(folder.Run(slave.name), PlanOf(stack, slave, wishes))) {
      outdated.push_back(slave.name);
    }
  }
  return outdated;
}

void RemoveStops(const STACK_DESCRIPTION& stack, const std::set<std::string>& only) {
  const STACK_FOLDER folder(stack.directory);
  fs::create_directories(folder.StatusDirectory());
  for (const STACK_SLAVE& slave : WantedSlaves(stack, only)) {
    std::error_code ignored;  // one that stays stops its slave
    fs::remove(folder.Run(slave.name).StopFile(), ignored);
  }
}

STACK_WORK PrepareStack(const STACK_DESCRIPTION& stack, const WISHES& wishes,
                        const std::map<std::string, QUEUE_ENTRY>& active) {
  return PREPARATION(stack, wishes).Prepare(active);
}
