#include "run/slave_run.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <system_error>

#include "run/child_process.h"
#include "run/file_lock.h"
#include "run/fingerprint.h"
#include "run/run_log_end.h"
#include "run/signals.h"
#include "run/slave_plan.h"

namespace {

namespace fs = std::filesystem;

std::string HostName() {
  std::array<char, 256> name{};
  return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "unknown";
}

/// The file that takes what an attempt prints.
class SCREEN {
 public:
  explicit SCREEN(const fs::path& file)
      : descriptor_(::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0) {
      throw std::system_error(errno, std::generic_category(), "can not create " + file.string());
    }
  }
  SCREEN(const SCREEN&) = delete;
  SCREEN& operator=(const SCREEN&) = delete;
  ~SCREEN() { ::close(descriptor_); }
  int Descriptor() const noexcept { return descriptor_; }

 private:
  int descriptor_;
};

class SLAVE_RUN {
 public:
  explicit SLAVE_RUN(const SLAVE_FOLDER& folder)
      : folder_(folder), plan_(ReadSlavePlan(folder)), record_(ReadSlaveRecord(folder)) {}

  RUN_STATE Run() {
    if (IsFinished(folder_, plan_)) {
      return End(RUN_STATE::SUCCEEDED, "");
    }
    CloseBrokenAttempts();
    while (true) {
      if (fs::exists(folder_.StopFile())) {
        return End(RUN_STATE::STOPPED, "STOP file");
      }
      if (!record_.MayRetry(plan_)) {
        return End(RUN_STATE::DIED, record_.attempts.back().how);
      }
      BeginAttempt();
      const CHILD_END end = Execute();
      if (const auto state = Judge(end)) {
        return End(*state, reason_);
      }
    }
  }

 private:
  /// Attempts whose machine or job went before they could tell their end.
  void CloseBrokenAttempts() {
    for (RUN_ATTEMPT& attempt : record_.attempts) {
      if (attempt.ended == 0.0) {
        attempt.ended = SecondsSince1970();
        attempt.how = "died with its machine or its job";
      }
    }
  }

  RUN_STATE End(RUN_STATE state, const std::string& reason) {
    RemovePartialOutputs(folder_, plan_);
    record_.state = state;
    record_.reason = reason;
    WriteSlaveRecord(folder_, record_);
    return state;
  }

  /// What an earlier run left goes first, so that nothing of it can be taken for this one's.
  void BeginAttempt() {
    fs::remove(folder_.OkFile());
    RemovePartialOutputs(folder_, plan_);
    record_.state = RUN_STATE::RUNNING;
    record_.reason = "";
    record_.fingerprint = Fingerprint(plan_);
    record_.attempts.push_back({.begun = SecondsSince1970(), .host = HostName()});
    WriteSlaveRecord(folder_, record_);
  }

  CHILD_END Execute() {
    const SCREEN screen(folder_.ScreenFile());
    fs::remove(folder_.LogFile());
    CHILD_PROCESS child({.command = {plan_.program, "-pid", folder_.Name(), "-status",
                                     folder_.StatusDirectory().string(), "-pcf",
                                     folder_.ConfigurationFile().string(), "-lfn",
                                     folder_.LogFile().string(), "-lsl", "INFO"},
                         .directory = folder_.Path(),
                         .screen = screen.Descriptor(),
                         .environment = {{"PROC_NAME", "resample-stack"}}});
    while (true) {
      if (const auto end = child.End()) {
        return *end;
      }
      if (const int signal = signals_.EndAsked()) {
        child.Terminate();
        child.Wait();
        return {.exit_status = -1, .signal = signal};
      }
      signals_.Wait(std::chrono::seconds(1));
    }
  }

  /// The state in which the attempt leaves the slave; nothing when it died and may be repeated.
  std::optional<RUN_STATE> Judge(const CHILD_END& end) {
    RUN_ATTEMPT& attempt = record_.attempts.back();
    attempt.ended = SecondsSince1970();
    if (signals_.EndAsked() != 0) {
      attempt.how = reason_ = "ended by signal " + std::to_string(signals_.EndAsked());
      return RUN_STATE::CANCELLED;
    }
    if (end.exit_status == 0) {
      return fs::exists(folder_.OkFile())
                 ? Publish(attempt)
                 : Fail(attempt, "succeeded, but left no " + folder_.OkFile().string());
    }
    constexpr int stopped_by_file = 2;
    if (end.exit_status == stopped_by_file) {
      attempt.how = reason_ = "STOP file";
      return RUN_STATE::STOPPED;
    }
    if (const int signal = end.signal != 0 ? end.signal : SignalInLog(folder_.LogFile())) {
      attempt.how = "died of signal " + std::to_string(signal) + ": " + ::strsignal(signal);
      return std::nullopt;
    }
    const std::string reason = ReasonOfFailure(folder_.LogFile(), folder_.ScreenFile());
    const std::string status = "exit status " + std::to_string(end.exit_status);
    return Fail(attempt, reason.empty() ? status : reason);
  }

  RUN_STATE Fail(RUN_ATTEMPT& attempt, const std::string& reason) {
    attempt.how = reason_ = reason;
    return RUN_STATE::FAILED;
  }

  RUN_STATE Publish(RUN_ATTEMPT& attempt) {
    try {
      PublishOutputs(plan_);
    } catch (const fs::filesystem_error& error) {
      return Fail(attempt, error.what());
    }
    attempt.how = "succeeded";
    return RUN_STATE::SUCCEEDED;
  }

  const SLAVE_FOLDER& folder_;
  const SLAVE_PLAN plan_;
  SLAVE_RECORD record_;
  SIGNALS signals_;
  std::string reason_;
};

}  // namespace

RUN_STATE RunSlave(const SLAVE_FOLDER& folder) {
  // Two starts, or two machines after a lost connection, take turns.
  const FILE_LOCK lock(folder.LockFile(), FILE_LOCK::WAY::WAIT);
  return SLAVE_RUN(folder).Run();
}
