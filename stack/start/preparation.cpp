#include "start/preparation.h"

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>

#include "app/program_version.h"
#include "check_run/run_check.h"
#include "control/controller_ifc.h"
#include "run/child_process.h"
#include "run/slave_record.h"

namespace {

namespace fs = std::filesystem;

fs::path DirectoryOfThisProgram() {
  return fs::read_symlink("/proc/self/exe").parent_path();
}

/// What a look at one slave's run has found.
struct SLAVE_FINDINGS {
  std::string failure;  ///< the first one; empty when the run can begin
  std::vector<std::string> warnings;
  std::vector<NEW_FILE> outputs;
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
    result.failure = first.empty() ? "fails" : first.front();
  }
  result.warnings = findings.Warnings();
  if (check.Figures()) {
    result.outputs = check.Figures()->outputs;
  }
  return result;
}

class PREPARATION {
 public:
  PREPARATION(const STACK_DESCRIPTION& stack, const PROGRAM& program, int retries)
      : folder_(stack.directory), program_(program), retries_(retries) {}

  STACK_WORK Prepare(const std::vector<STACK_SLAVE>& slaves,
                     const std::map<std::string, QUEUE_STATE>& active) {
    fs::create_directories(folder_.StatusDirectory());
    for (const STACK_SLAVE& slave : slaves) {
      if (active.contains(slave.name)) {
        work_.active.push_back(slave.name);
      } else {
        Prepare(slave);
      }
    }
    RemarkOnDisks();
    return std::move(work_);
  }

 private:
  void Prepare(const STACK_SLAVE& slave) {
    const SLAVE_FOLDER run = folder_.Run(slave.name);
    const SLAVE_PLAN plan = {.program = program_.path,
                             .version = program_.version,
                             .parameters = slave.parameters,
                             .retries = retries_};
    if (IsFinished(run, plan)) {
      NoteSuccess(run);
      ++work_.finished;
      return;
    }
    fs::create_directories(run.Path());
    fs::remove(run.StopFile());
    fs::remove(run.OkFile());
    WriteSlavePlan(run, plan);
    WriteConfigurationFile(run, plan);
    Check(run);
  }

  /// Whoever should have noted it may have been killed, or have found no way to its final name.
  static void NoteSuccess(const SLAVE_FOLDER& run) {
    SLAVE_RECORD record = ReadSlaveRecord(run);
    if (record.state != RUN_STATE::SUCCEEDED) {
      record.state = RUN_STATE::SUCCEEDED;
      record.reason = "";
      WriteSlaveRecord(run, record);
    }
  }

  void Check(const SLAVE_FOLDER& run) {
    const SLAVE_FINDINGS found = CheckSlave(run);
    SLAVE_RECORD record;
    if (found.failure.empty()) {
      work_.to_run.push_back(run.Name());
      outputs_.insert(outputs_.end(), found.outputs.begin(), found.outputs.end());
    } else {
      record.state = RUN_STATE::FAILED;
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
    work_.remarks.push_back(run.Name() + ": " + text);
  }

  void RemarkOnDisks() {
    for (const DISK_NEED& need : DiskNeeds(outputs_)) {
      if (need.written > need.available) {
        work_.remarks.push_back("warning: the outputs on the disk of " + need.path + " take " +
                                std::to_string(need.written) + " bytes, " +
                                std::to_string(need.available) + " are free");
      }
    }
  }

  STACK_FOLDER folder_;
  const PROGRAM& program_;
  int retries_;
  STACK_WORK work_;
  std::vector<NEW_FILE> outputs_;
};

}  // namespace

PROGRAM FindProgram(const std::string& path) {
  PROGRAM program{path, ""};
  if (path.empty()) {
    const fs::path beside = DirectoryOfThisProgram() / "resample";
    program.path = fs::exists(beside) ? beside.string() : "resample";
  } else if (path.find('/') != std::string::npos) {
    program.path = fs::absolute(path).string();
  }
  const COMMAND_RESULT result = RunCommand({program.path, "--version"});
  if (result.end.exit_status != 0) {
    throw STACK_ERROR(program.path + " --version: " + result.text);
  }
  program.version = result.text.substr(0, result.text.find('\n'));
  return program;
}

STACK_WORK PrepareStack(const STACK_DESCRIPTION& stack, const PROGRAM& program, int retries,
                        const std::map<std::string, QUEUE_STATE>& active) {
  return PREPARATION(stack, program, retries).Prepare(stack.slaves, active);
}
