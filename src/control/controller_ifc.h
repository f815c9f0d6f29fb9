#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "control/configuration_file.h"
#include "control/fatal_signal.h"
#include "control/status_files.h"

/// The program's link to whatever starts it, a supervisor of the processing chain or a person at
/// a terminal: its parameters, its log file, its marker files in the status directory, and its
/// end. One instance exists per process; it is used from one thread.
///
/// Parameters of its own, from the argument list or the environment: "pid" (name of the run in
/// place of the binary name), "status" (directory of the marker files), "pcf" (configuration
/// file, else "pcf." and the name), "lfn" (log file, else "log." and the name); from the
/// configuration file too: "lfl" and "lsl" (level of the log file and of the screen).
class CONTROLLER_IFC {
 public:
  /// What a parameter means, in lines that end with a line feed; empty for an unknown one.
  using PARAMETER_HINT = std::string (*)(const std::string& name);

  CONTROLLER_IFC() = default;
  ~CONTROLLER_IFC();
  CONTROLLER_IFC(const CONTROLLER_IFC&) = delete;
  CONTROLLER_IFC& operator=(const CONTROLLER_IFC&) = delete;

  /// Parameters that name files of the run, to be told before `init`.
  struct FILE_PARAMETERS {
    std::vector<std::string> inputs;
    std::vector<std::string> outputs;
  };
  /// A log of the same name as one of these files stays without a file; an input of the name of a
  /// status or process identifier file is refused.
  void ProtectFiles(FILE_PARAMETERS parameters) { file_parameters_ = std::move(parameters); }

  /// Makes this the controller of the process, installs the fatal-signal handler, opens the
  /// configuration file and the log, and leaves the ERROR file, which only a successful end
  /// replaces. Ends the process with exit status 2 when the STOP file exists. The arguments must
  /// outlive the controller. With a `supervisor_flag` other than 0 fatal signals are reported to
  /// the supervisor.
  ///
  /// Throws ERROR_ARGUMENT for an input that is named like a file which the run writes here, and
  /// ERROR_CAN_NOT_WRITE_FILE for an old OK file that can not be removed.
  void init(int argc, char** argv, int supervisor_flag);

  /// For one who only wants to know what a run with these arguments would find: opens the
  /// configuration file, and nothing else happens. No file is written, no signal handled, the log
  /// stays where it is. Lookups then go to the same places as those of a run, but nobody is asked:
  /// a parameter that is given nowhere is an ALARM line and a `const char*`. An existing STOP file
  /// is the same.
  void InitLookups(int argc, char** argv);

  /// Whom to ask for what a person at the keyboard is told about a parameter.
  void ExplainParameters(PARAMETER_HINT hint) noexcept { hint_ = hint; }

  /// Looks a parameter up in the argument list ("-NAME value", the last one wins), the
  /// configuration file and the environment, and asks for it at the keyboard when it is in none
  /// of them. With `no_prompt` the result is false then, and `value` unchanged.
  /// Throws a `const char*` when the keyboard's input ends, ERROR_ARGUMENT for a value with a NUL
  /// character, which would be cut there.
  bool GetParameter(const char* name, std::string& value, bool no_prompt = false);
  /// Whether the parameter is given without asking at the keyboard.
  bool IsGiven(const char* name);

  /// The name of the run: the parameter "pid", or the last path component of the first argument.
  /// Before `init` it is "unknown".
  const std::string& get_binary_name();
  /// The last path component of the first argument, whatever "pid" says.
  const char* ArgumentBinaryName() const noexcept { return argument_binary_name_; }
  /// Ends with "/", or is empty for the current directory.
  const std::string& StatusPath() const noexcept { return status_path_; }
  const std::string& ConfigurationFileName() const noexcept { return configuration_file_name_; }
  /// All words of the argument list, the program's name first.
  std::span<const char* const> Arguments() const noexcept {
    return {argv_, static_cast<std::size_t>(argc_)};
  }
  /// The names in the configuration file, as they stand there; none of one that is a pipe.
  std::vector<std::string> ConfigurationFileNames() { return configuration_file_.Names(); }
  /// The files of the run's control: configuration file, log, marker and process identifier files.
  std::vector<std::string> OwnFiles() const;
  int SupervisorFlag() const noexcept { return signalled_run_.tells_supervisor ? 1 : 0; }
  void SetSupervisorFlag() noexcept { signalled_run_.tells_supervisor = true; }

  /// Creates the file with the number as its text; a failure is only logged.
  static void WriteStatusFile(const std::string& path, int number);
  /// Throws ERROR_CAN_NOT_WRITE_FILE when it can not be removed.
  void RemoveErrorFile() const;
  void CloseConfigurationFile() noexcept { configuration_file_.Close(); }

  /// The two ends of a run: they leave the OK file with 0 or the ERROR file with 1, remove the
  /// other one and return the exit status. Signals that are sent to it do not change the outcome
  /// any more. A success next to an ERROR file that can not be removed would be none: it throws
  /// ERROR_CAN_NOT_WRITE_FILE.
  int FinishSuccess();
  int FinishFailure();
  /// The same, and the process ends with that exit status. Objects on the stack are not torn
  /// down.
  [[noreturn]] void FinishSuccessExit();
  [[noreturn]] void FinishFailureExit();

  /// Lets invalid operations, divisions by zero and overflows of the calling thread raise SIGFPE
  /// instead of producing a NaN or an infinity.
  static void EnableFloatingPointTraps();

 private:
  void TakeArguments(int argc, char** argv);
  void SetStatusFiles();
  /// Name and places of the run; whether it is named by a parameter.
  bool LookUpRun();
  void WarnWithoutConfigurationFile() const;
  std::string LookUpLogFileName(bool run_is_named);
  void OpenLog();
  void SetLogLevels();
  void StopWhenAsked() const;
  void RefuseInputsNamedLikeOwnFiles();
  void RemoveStaleOkFile() const;

  std::optional<std::string> LookUp(const std::string& name);
  std::optional<std::string> LookUpArgument(const std::string& name) const;
  const char* FindArgument(const std::string& name) const;
  std::optional<std::string> LookUpConfigurationFile(const std::string& name);

  /// A value, wherever it comes from but the keyboard, without a line in the log.
  std::optional<std::string> Peek(const std::string& name);

  bool asks_nobody_ = false;
  std::string log_file_name_;  ///< as asked for, whether it could be opened or not
  PARAMETER_HINT hint_ = [](const std::string&) { return std::string(); };
  int argc_ = 0;
  char** argv_ = nullptr;
  FILE_PARAMETERS file_parameters_;
  std::optional<std::string> binary_name_;
  const char* argument_binary_name_ = "unknown";
  std::string status_path_;
  CONFIGURATION_FILE configuration_file_;
  std::string configuration_file_name_;
  std::unique_ptr<STATUS_FILES> status_files_;
  SIGNALLED_RUN signalled_run_;  ///< shares what the fatal-signal handler needs
};
