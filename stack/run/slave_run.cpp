#include "run/slave_run.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <optional>
#include <system_error>

#include "basics/child_process.h"
#include "basics/file_lock.h"
#include "basics/signals.h"
#include "basics/stack_error.h"
#include "description/slave_files.h"
#include "run/attempt_files.h"
#include "run/fingerprint.h"
#include "run/run_log_end.h"
#include "run/scratch_copies.h"
#include "run/slave_plan.h"
#include "slurm/slurm_command.h"

namespace {

namespace fs = std::filesystem;

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// As Slurm calls the machine, where it runs there.
std::string HostName() {
  std::array<char, 256> name{};
  if (std::string node = Variable("SLURMD_NODENAME"); !node.empty()) {
    return node;
  }
  return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "unknown";
}

/// "JOB_INDEX", empty outside of Slurm.
std::string TaskOfSlurm() {
  const std::string job = Variable("SLURM_ARRAY_JOB_ID");
  return job.empty() ? "" : job + "_" + Variable("SLURM_ARRAY_TASK_ID");
}

/// Signals of which a run dies as often as it is repeated, besides those that its disk explains.
bool WillComeAgain(int signal) {
  constexpr std::array signals = {SIGXFSZ, SIGXCPU, SIGILL, SIGSYS};
  return std::find(signals.begin(), signals.end(), signal) != signals.end();
}

class SLAVE_RUN {
 public:
  SLAVE_RUN(const SLAVE_FOLDER& folder, const FILE_LOCK& lock)
      : folder_(folder),
        stack_(folder.StatusDirectory().parent_path()),
        lock_(lock),
        task_(TaskOfSlurm()),
        plan_(ReadSlavePlan(folder)),
        record_(ReadSlaveRecord(folder)) {
    // The program of this machine may be another one than that of the start.
    plan_.build = BuildOf(plan_.program);
  }

  SLAVE_STATE Run() {
    if (CompletePublication(stack_, folder_, plan_)) {
      return End(SLAVE_STATE::SUCCEEDED, "");
    }
    CloseBrokenAttempts();
    while (true) {
      if (fs::exists(folder_.StopFile())) {
        return End(SLAVE_STATE::STOPPED, "STOP file");
      }
      if (!record_.MayRetry(plan_)) {
        return End(SLAVE_STATE::DIED, record_.attempts.back().how);
      }
      if (const std::string missing = MissingHere(); !task_.empty() && !missing.empty()) {
        return End(SLAVE_STATE::WAITING, HostName() + " does not see " + missing);
      }
      BeginAttempt();
      if (const auto state = Attempt()) {
        return End(*state, reason_);
      }
    }
  }

 private:
  /// Attempts whose machine or job went before they could tell their end. What Slurm itself starts
  /// again has not died.
  void CloseBrokenAttempts() {
    for (RUN_ATTEMPT& attempt : record_.attempts) {
      if (attempt.ended == 0.0) {
        const bool is_requeued = !task_.empty() && attempt.task == task_;
        attempt.ended = SecondsSince1970();
        attempt.died = !is_requeued;
        attempt.how =
            is_requeued ? "put back into the queue by Slurm" : "died with its machine or its job";
      }
    }
  }

  SLAVE_STATE End(SLAVE_STATE state, const std::string& reason) {
    record_.state = state;
    record_.reason = reason;
    WriteSlaveRecord(folder_, record_);
    return state;
  }

  /// The program or the input that was there at the start and is not on this machine.
  std::string MissingHere() const {
    std::vector<std::string> needed =
        ValuesOf(plan_.parameters, {PARAMETER_KIND::RASTER, PARAMETER_KIND::POOL});
    needed.push_back(plan_.program);
    const auto missing = std::find_if(needed.begin(), needed.end(), [](const std::string& path) {
      return ::access(path.c_str(), F_OK) != 0;
    });
    return missing == needed.end() ? "" : *missing;
  }

  /// What an earlier run left goes first, so that nothing of it can be taken for this one's.
  void BeginAttempt() {
    fs::remove(folder_.OkFile());
    RemovePartialOutputs(plan_.Outputs());
    record_.state = SLAVE_STATE::RUNNING;
    record_.reason = "";
    record_.fingerprint = Fingerprint(plan_);
    record_.outputs.clear();
    const double now = SecondsSince1970();
    const fs::path log = ATTEMPT_FILES(folder_, now, task_).Log();
    record_.attempts.push_back(
        {.begun = now, .host = HostName(), .task = task_, .log = log.filename().string()});
    WriteSlaveRecord(folder_, record_);
  }

  /// The state in which the attempt leaves the slave; nothing when it died and may be repeated.
  std::optional<SLAVE_STATE> Attempt() {
    try {
      std::deque<PARTIAL_FILE> outputs;
      for (const fs::path& output : plan_.Outputs()) {
        outputs.emplace_back(output);
      }
      std::optional<SCRATCH_COPIES> scratch;
      if (!plan_.scratch.empty()) {
        scratch.emplace(plan_, folder_.Name());
      }
      WriteConfigurationFile(folder_, scratch ? scratch->Parameters() : plan_.RunParameters());
      const CHILD_END end = Execute(outputs);
      record_.attempts.back().ended = SecondsSince1970();
      return end.exit_status == 0 ? Succeed(outputs, scratch) : Judge(end, outputs);
    } catch (const STACK_ERROR& error) {
      return Fail(error.what());
    } catch (const std::system_error& error) {  // those of std::filesystem as well
      return Fail(error.what());
    }
  }

  CHILD_END Execute(const std::deque<PARTIAL_FILE>& outputs) {
    const ATTEMPT_FILES files(folder_, record_.attempts.back().begun, task_);
    files.Lead(folder_);
    const SCREEN screen(files.Screen());
    std::vector<int> kept = {lock_.Descriptor()};
    std::transform(outputs.begin(), outputs.end(), std::back_inserter(kept),
                   [](const PARTIAL_FILE& output) { return output.Descriptor(); });
    CHILD_PROCESS child({.command = {plan_.program, "-pid", folder_.Name(), "-status",
                                     folder_.StatusDirectory().string(), "-pcf",
                                     folder_.ConfigurationFile().string(), "-lfn",
                                     files.Log().string(), "-lsl", "INFO"},
                         .directory = folder_.Path(),
                         .screen = screen.Descriptor(),
                         .environment = {{"PROC_NAME", "resample-stack"}},
                         .kept = kept});
    while (true) {
      if (const auto end = child.End()) {
        return *end;
      }
      if (signals_.EndAsked() != 0) {
        child.Terminate();
        return child.Wait();
      }
      signals_.Wait(std::chrono::seconds(1));
    }
  }

  /// The record tells what the run has made before anything of it takes its final name.
  SLAVE_STATE Succeed(std::deque<PARTIAL_FILE>& outputs,
                      const std::optional<SCRATCH_COPIES>& scratch) {
    if (!fs::exists(folder_.OkFile())) {
      return Fail("succeeded, but left no " + folder_.OkFile().string());
    }
    if (scratch) {
      scratch->BringOutputsBack();
    }
    if (const std::string changed = ChangedInput(); !changed.empty()) {
      return Fail(changed);
    }
    for (PARTIAL_FILE& output : outputs) {
      record_.outputs.push_back(output.Keep());
    }
    record_.stack = stack_.Identity();
    record_.attempts.back().how = "succeeded";
    WriteSlaveRecord(folder_, record_);
    PublishOutputs(plan_.Outputs(), record_.outputs, false);
    return SLAVE_STATE::SUCCEEDED;
  }

  /// Empty when all inputs are what they were at the begin.
  std::string ChangedInput() const {
    const std::string changed = DifferenceOf(record_.fingerprint, Fingerprint(plan_));
    return changed.empty() ? "" : "changed while the run was at work: " + changed;
  }

  std::optional<SLAVE_STATE> Judge(const CHILD_END& end, const std::deque<PARTIAL_FILE>& outputs) {
    const int signal = end.signal != 0 ? end.signal : SignalInLog(folder_.LogFile());
    if (signal != 0) {
      AwaitOwnSignal();
    }
    if (signals_.EndAsked() != 0) {
      return EndByQueue();
    }
    constexpr int stopped_by_file = 2;
    if (end.exit_status == stopped_by_file) {
      record_.attempts.back().how = reason_ = "STOP file";
      return SLAVE_STATE::STOPPED;
    }
    return signal != 0 ? JudgeSignal(signal, outputs) : FailWithExitStatus(end.exit_status);
  }

  /// Who ends a job signals all its processes, in any order.
  void AwaitOwnSignal() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    do {
      signals_.Wait(std::chrono::milliseconds(100));
    } while (signals_.EndAsked() == 0 && std::chrono::steady_clock::now() < end);
  }

  /// Noted at once, since the next signal may be SIGKILL; then by Slurm's own word for it.
  SLAVE_STATE EndByQueue() {
    RUN_ATTEMPT& attempt = record_.attempts.back();
    SLAVE_STATE state = signals_.IsTimeShort() ? SLAVE_STATE::TIMED_OUT : SLAVE_STATE::CANCELLED;
    attempt.how = reason_ = "ended by signal " + std::to_string(signals_.EndAsked());
    End(state, reason_);
    if (const auto report = task_.empty() ? std::nullopt : ReportOfTask(task_)) {
      if (report->state == "TIMEOUT" || report->reason == "TimeLimit") {
        state = SLAVE_STATE::TIMED_OUT;
      } else if (report->state == "CANCELLED") {
        state = SLAVE_STATE::CANCELLED;
        attempt.how = reason_ = report->Text();
      }
    }
    if (state == SLAVE_STATE::TIMED_OUT) {
      attempt.how = reason_ = "time limit of the queue";
    }
    return state;
  }

  std::optional<SLAVE_STATE> JudgeSignal(int signal, const std::deque<PARTIAL_FILE>& outputs) {
    if (signal == SIGBUS) {
      for (const PARTIAL_FILE& output : outputs) {
        if (const int error = output.DiskError()) {
          return Fail(output.Path().string() + ": " + ::strerror(error));
        }
      }
      if (const std::string changed = ChangedInput(); !changed.empty()) {
        return Fail(changed);
      }
    }
    const std::string how = "died of signal " + std::to_string(signal) + ": " + ::strsignal(signal);
    if (WillComeAgain(signal)) {
      return Fail(how);
    }
    record_.attempts.back().how = how;
    record_.attempts.back().died = true;
    return std::nullopt;
  }

  SLAVE_STATE FailWithExitStatus(int exit_status) {
    const std::string reason = ReasonOfFailure(folder_.LogFile(), folder_.ScreenFile());
    return Fail(reason.empty() ? "exit status " + std::to_string(exit_status) : reason);
  }

  SLAVE_STATE Fail(const std::string& reason) {
    record_.attempts.back().ended = SecondsSince1970();
    record_.attempts.back().how = reason_ = reason;
    return SLAVE_STATE::FAILED;
  }

  const SLAVE_FOLDER& folder_;
  STACK_FOLDER stack_;
  const FILE_LOCK& lock_;
  std::string task_;
  SLAVE_PLAN plan_;
  SLAVE_RECORD record_;
  SIGNALS signals_;
  std::string reason_;
};

}  // namespace

SLAVE_STATE RunSlave(const SLAVE_FOLDER& folder) {
  // Two starts, or two machines after a lost connection, take turns.
  const FILE_LOCK lock(folder.LockFile(), FILE_LOCK::WAY::WAIT);
  return SLAVE_RUN(folder, lock).Run();
}
