#include "control/controller_ifc.h"

#include <unistd.h>

#include <cerrno>
#include <cfenv>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "base/same_file.h"
#include "control/fatal_signal.h"
#include "control/keyboard.h"
#include "control/number_file.h"
#include "control/process_id_files.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

const char* LastPathComponent(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  return slash == nullptr ? path : slash + 1;
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

std::atomic<CONTROLLER_IFC*> CONTROLLER_IFC::current_ = nullptr;

CONTROLLER_IFC::~CONTROLLER_IFC() {
  CONTROLLER_IFC* self = this;
  current_.compare_exchange_strong(self, nullptr);
}

void CONTROLLER_IFC::init(int argc, char** argv, int supervisor_flag) {
  supervisor_flag_ = supervisor_flag;
  argc_ = argc;
  argv_ = argv;
  if (argc > 0) {
    argument_binary_name_ = LastPathComponent(argv[0]);
  }
  SetStatusFiles();
  // A signal that arrives right after the installation finds a controller with its paths.
  current_ = this;
  InstallFatalSignalHandler();

  // Known already; these are for the log, which an early signal may interrupt.
  const std::optional<std::string> run_name = LookUp("pid");
  Log() << TRACE << "binary name is " << *binary_name_;
  LookUp("status");
  Log() << TRACE << "status path is [" << status_path_ << "]";

  configuration_file_name_ = LookUp("pcf").value_or("pcf." + *binary_name_);
  // The log file can not be named in the configuration file, so its name is looked up first.
  const std::string log_file_name = LookUpLogFileName(run_name.has_value());
  configuration_file_.Open(configuration_file_name_);
  OpenLog(log_file_name);
  if (!configuration_file_.IsOpen()) {
    Log() << WARNING << "Configuration file " << configuration_file_name_ << " does not exist!";
  }
  SetLogLevels();

  StopWhenAsked();
  ::unlink(status_files_->OkFile().c_str());
  WriteStatusFile(status_files_->ErrorFile(), 1);
  WriteProcessIdFiles();
}

void CONTROLLER_IFC::SetStatusFiles() {
  binary_name_ = Peek("pid").value_or(argument_binary_name_);
  status_path_ = Peek("status").value_or("");
  if (!status_path_.empty() && !status_path_.ends_with('/')) {
    status_path_ += '/';
  }
  auto status_files = std::make_unique<const STATUS_FILES>(status_path_, *binary_name_);
  published_status_files_ = status_files.get();
  status_files_ = std::move(status_files);
}

std::string CONTROLLER_IFC::LookUpLogFileName(bool run_is_named) {
  if (std::optional<std::string> name = LookUp("lfn")) {
    return *std::move(name);
  }
  std::string name_so_far = Log().FileName();
  return name_so_far.empty() || run_is_named ? "log." + *binary_name_ : name_so_far;
}

void CONTROLLER_IFC::OpenLog(const std::string& file_name) {
  std::vector<std::string> kept = {configuration_file_name_};
  for (const std::string& parameter : kept_from_log_) {
    kept.push_back(Peek(parameter).value_or(""));
  }
  for (const std::string& file : kept) {
    if (IsSameFile(file_name.c_str(), file.c_str())) {
      Log() << ALARM << " can not open logging file: " << file_name;
      Log() << ALARM << "logging would overwrite another file of the run: " << file;
      return;
    }
  }
  Log().Open(file_name);
}

std::vector<std::string> CONTROLLER_IFC::OwnFiles() const {
  return {configuration_file_name_,   Log().FileName(),        status_files_->StopFile(),
          status_files_->ErrorFile(), status_files_->OkFile(), current_process_file,
          parent_process_file};
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
    found = AskAtKeyboard(name, hint_(name));
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
  if (status_files_ && ::unlink(status_files_->ErrorFile().c_str()) != 0 && errno != ENOENT) {
    Log() << WARNING << "Can not remove file " << status_files_->ErrorFile() << "!";
  }
}

bool CONTROLLER_IFC::MarkFailed() const noexcept {
  const STATUS_FILES* const status_files = published_status_files_;
  return status_files != nullptr && status_files->MarkFailed();
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
  if (!MarkFailed() && status_files_) {
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
