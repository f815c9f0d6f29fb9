#include "control/controller_ifc.h"

#include <cerrno>
#include <cfenv>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "base/error_exception.h"
#include "base/same_file.h"
#include "control/fatal_signal.h"
#include "control/keyboard.h"
#include "control/number_file.h"
#include "control/process_id_files.h"
#include "logging/logging.h"
#include "system/c_locale.h"

namespace {

using enum LOGGING_LEVEL_T;

const char* LastPathComponent(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
}

[[noreturn]] void ThrowCanNotRemove(const std::string& file) {
  const std::string reason = SystemErrorText(errno);
  Log() << ALARM << "Can not remove file " << file << "!";
  Log() << ALARM << "reason: " << reason;
  throw ERROR_CAN_NOT_WRITE_FILE();
}

std::optional<std::string> LookUpEnvironment(const std::string& name) {
  const char* const value = std::getenv(name.c_str());
  if (value == nullptr) {
    Log() << TRACE << "parameter " << name << " not found in UNIX environment";
    return std::nullopt;
  }
  Log() << DEBUG << "Found parameter in UNIX environment " << name << "=" << value;
  return value;
}

}  // namespace

CONTROLLER_IFC::~CONTROLLER_IFC() {
  if (PublishedRun() == &signalled_run_) {
    PublishRun(nullptr);
  }
}

void CONTROLLER_IFC::init(int argc, char** argv, int supervisor_flag) {
  signalled_run_.tells_supervisor = supervisor_flag != 0;
  TakeArguments(argc, argv);
  // A signal that arrives right after the installation finds a run with its paths.
  PublishRun(&signalled_run_);
  InstallFatalSignalHandler();

  const bool run_is_named = LookUpRun();
  // The log file can not be named in the configuration file, so its name is looked up first.
  log_file_name_ = LookUpLogFileName(run_is_named);
  configuration_file_.Open(configuration_file_name_);
  OpenLog();
  WarnWithoutConfigurationFile();
  SetLogLevels();

  StopWhenAsked();
  RefuseInputsNamedLikeOwnFiles();
  RemoveStaleOkFile();
  WriteStatusFile(status_files_->ErrorFile(), 1);
  WriteProcessIdFiles();
}

void CONTROLLER_IFC::InitLookups(int argc, char** argv) {
  asks_nobody_ = true;
  TakeArguments(argc, argv);
  log_file_name_ = LookUpLogFileName(LookUpRun());
  configuration_file_.Open(configuration_file_name_);
  WarnWithoutConfigurationFile();
  if (status_files_->StopFileExists()) {
    Log() << ALARM << "STOP file was found: " << status_files_->StopFile();
    throw "program execution interrupted";
  }
  RefuseInputsNamedLikeOwnFiles();
}

void CONTROLLER_IFC::TakeArguments(int argc, char** argv) {
  argc_ = argc;
  argv_ = argv;
  if (argc > 0) {
    argument_binary_name_ = LastPathComponent(argv[0]);
    signalled_run_.program = argument_binary_name_;
  }
  SetStatusFiles();
}

bool CONTROLLER_IFC::LookUpRun() {
  // Known already; these are for the log, which an early signal may interrupt.
  const std::optional<std::string> run_name = LookUp("pid");
  Log() << TRACE << "binary name is " << *binary_name_;
  LookUp("status");
  Log() << TRACE << "status path is [" << status_path_ << "]";
  configuration_file_name_ = LookUp("pcf").value_or("pcf." + *binary_name_);
  return run_name.has_value();
}

void CONTROLLER_IFC::WarnWithoutConfigurationFile() const {
  if (!configuration_file_.IsOpen()) {
    Log() << WARNING << "Configuration file " << configuration_file_name_ << " does not exist!";
  }
}

void CONTROLLER_IFC::SetStatusFiles() {
  binary_name_ = Peek("pid").value_or(argument_binary_name_);
  status_path_ = Peek("status").value_or("");
  if (!status_path_.empty() && !status_path_.ends_with('/')) {
    status_path_ += '/';
  }
  status_files_ = std::make_unique<STATUS_FILES>(status_path_, *binary_name_);
  signalled_run_.status_files = status_files_.get();
}

std::string CONTROLLER_IFC::LookUpLogFileName(bool run_is_named) {
  if (std::optional<std::string> name = LookUp("lfn")) {
    return *std::move(name);
  }
  std::string name_so_far = Log().FileName();
  return name_so_far.empty() || run_is_named ? "log." + *binary_name_ : name_so_far;
}

void CONTROLLER_IFC::OpenLog() {
  std::vector<std::string> kept = {configuration_file_name_,   status_files_->StopFile(),
                                   status_files_->ErrorFile(), status_files_->OkFile(),
                                   current_process_file,       parent_process_file};
  for (const auto* parameters : {&file_parameters_.inputs, &file_parameters_.outputs}) {
    for (const std::string& parameter : *parameters) {
      kept.push_back(Peek(parameter).value_or(""));
    }
  }
  for (const std::string& file : kept) {
    if (!file.empty() && IsSamePath(log_file_name_, file)) {
      Log() << ALARM << " can not open logging file: " << log_file_name_;
      Log() << ALARM << "logging would overwrite another file of the run: " << file;
      return;
    }
  }
  Log().Open(log_file_name_);
}

void CONTROLLER_IFC::RefuseInputsNamedLikeOwnFiles() {
  std::vector<std::string> inputs = {configuration_file_name_};
  for (const std::string& parameter : file_parameters_.inputs) {
    inputs.push_back(Peek(parameter).value_or(""));
  }
  const std::string& ok_file = status_files_->OkFile();
  const std::string& error_file = status_files_->ErrorFile();
  bool is_refused = false;
  for (const std::string& input : inputs) {
    for (const std::string& own : {ok_file, error_file, std::string(current_process_file),
                                   std::string(parent_process_file)}) {
      if (!input.empty() && LeadsThrough(input, own)) {
        Log() << ALARM << "input has the name of a file that the run writes: " << input << " is "
              << own;
        is_refused = true;
        // The end of the run must not touch it either.
        if (own == ok_file) {
          status_files_->SpareOkFile();
        } else if (own == error_file) {
          status_files_->SpareErrorFile();
        }
      }
    }
  }
  if (is_refused) {
    throw ERROR_ARGUMENT();
  }
}

void CONTROLLER_IFC::RemoveStaleOkFile() const {
  if (!status_files_->RemoveOkFile()) {
    ThrowCanNotRemove(status_files_->OkFile());
  }
}

std::vector<std::string> CONTROLLER_IFC::OwnFiles() const {
  return {configuration_file_name_,   log_file_name_,
          Log().FileName(),           status_files_->StopFile(),
          status_files_->ErrorFile(), status_files_->OkFile(),
          current_process_file,       parent_process_file};
}

void CONTROLLER_IFC::SetLogLevels() {
  if (const std::optional<std::string> level = LookUp("lfl")) {
    Log().SetFileLevel(*level);
  }
  if (const std::optional<std::string> level = LookUp("lsl")) {
    Log().SetScreenLevel(*level);
  }
}

void CONTROLLER_IFC::StopWhenAsked() const {
  if (!status_files_->StopFileExists()) {
    return;
  }
  const std::string rule(52, '=');
  Log() << INFO << rule;
  Log() << INFO << "Program execution interrupted - STOP file was found!";
  Log() << INFO << rule;
  Log() << INFO << "found file: " << status_files_->StopFile();
  BlockFatalSignals();
  std::exit(2);
}

bool CONTROLLER_IFC::GetParameter(const char* name, std::string& value, bool no_prompt) {
  std::optional<std::string> found = LookUp(name);
  if (!found) {
    if (no_prompt) {
      return false;
    }
    if (asks_nobody_) {
      Log() << ALARM << "no value for parameter " << name;
      throw "missing parameter";
    }
    found = AskAtKeyboard(name, hint_(name));
  }
  if (found->find('\0') != std::string::npos) {
    Log() << ALARM << "value with a NUL character for parameter " << name << ": " << *found;
    throw ERROR_ARGUMENT();
  }
  value = std::move(*found);
  return true;
}

bool CONTROLLER_IFC::IsGiven(const char* name) {
  return LookUp(name).has_value();
}

std::optional<std::string> CONTROLLER_IFC::LookUp(const std::string& name) {
  if (std::optional<std::string> value = LookUpArgument(name)) {
    return value;
  }
  if (std::optional<std::string> value = LookUpConfigurationFile(name)) {
    return value;
  }
  return LookUpEnvironment(name);
}

std::optional<std::string> CONTROLLER_IFC::LookUpArgument(const std::string& name) const {
  if (const char* const value = FindArgument(name)) {
    Log() << DEBUG << "Found parameter in argument list " << name << " = " << value;
    return value;
  }
  Log() << TRACE << "Parameter " << name << " not found in argument list!";
  return std::nullopt;
}

const char* CONTROLLER_IFC::FindArgument(const std::string& name) const {
  const std::string option = "-" + name;
  for (int i = argc_ - 2; i >= 1; --i) {
    if (argv_[i] == option) {
      return argv_[i + 1];
    }
  }
  return nullptr;
}

std::optional<std::string> CONTROLLER_IFC::Peek(const std::string& name) {
  if (const char* const value = FindArgument(name)) {
    return value;
  }
  if (std::optional<std::string> value = configuration_file_.FindFromStart(name)) {
    return value;
  }
  const char* const value = std::getenv(name.c_str());
  return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

std::optional<std::string> CONTROLLER_IFC::LookUpConfigurationFile(const std::string& name) {
  std::optional<std::string> value = configuration_file_.Find(name);
  if (value) {
    Log() << DEBUG << "Found parameter " << name << "=" << *value;
  }
  return value;
}

const std::string& CONTROLLER_IFC::get_binary_name() {
  if (!binary_name_) {
    Log() << WARNING << "CONTROLLER_IFC::get_binary_name: Controller interface not initialized!";
    Log() << WARNING
          << "Function CONTROLLER_IFC::init must be called before accessing a controller object!";
    binary_name_ = "unknown";
  }
  return *binary_name_;
}

void CONTROLLER_IFC::WriteStatusFile(const std::string& path, int number) {
  if (!WriteNumberFile(path.c_str(), number)) {
    Log() << WARNING << "Can not create file " << path << "!";
  }
}

void CONTROLLER_IFC::RemoveErrorFile() const {
  if (status_files_ && !status_files_->RemoveErrorFile()) {
    ThrowCanNotRemove(status_files_->ErrorFile());
  }
}

int CONTROLLER_IFC::FinishSuccess() {
  BlockFatalSignals();
  CloseConfigurationFile();
  RemoveErrorFile();
  if (status_files_) {
    WriteStatusFile(status_files_->OkFile(), 0);
  }
  return 0;
}

int CONTROLLER_IFC::FinishFailure() {
  BlockFatalSignals();
  CloseConfigurationFile();
  if (status_files_ && !status_files_->MarkFailed()) {
    Log() << WARNING << "Can not create file " << status_files_->ErrorFile() << "!";
  }
  return 1;
}

void CONTROLLER_IFC::FinishSuccessExit() {
  std::exit(FinishSuccess());
}

void CONTROLLER_IFC::FinishFailureExit() {
  std::exit(FinishFailure());
}

void CONTROLLER_IFC::EnableFloatingPointTraps() {
  constexpr int traps = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW;
  // An operation of the past must not trap now.
  ::feclearexcept(traps);
  ::feenableexcept(traps);
}
