#include "slurm/slurm_command.h"

#include <cstdlib>
#include <map>
#include <sstream>

namespace {

/// The value of one of the "Name=value" in scontrol's line; empty without it.
std::string Field(const std::string& line, const std::string& name) {
  std::istringstream words(line);
  for (std::string word; words >> word;) {
    if (word.starts_with(name + "=")) {
      const std::string value = word.substr(name.size() + 1);
      return value == "(null)" ? "" : value;
    }
  }
  return "";
}

std::optional<TASK_REPORT> AskController(const std::string& task) {
  const auto show = [](const std::string& job) {
    return RunSlurmCommand({"scontrol", "--oneliner", "show", "job", job});
  };
  const COMMAND_RESULT result = show(task);
  if (result.end.exit_status == 0) {
    return TASK_REPORT{.state = Field(result.text, "JobState"),
                       .reason = Field(result.text, "Reason"),
                       .exit = Field(result.text, "ExitCode"),
                       .node = Field(result.text, "NodeList")};
  }
  // A task becomes a job of its own when it begins: one that was taken out of its array before is
  // not known any more as long as the array is.
  if (show(task.substr(0, task.find('_'))).end.exit_status == 0) {
    return TASK_REPORT{.state = "CANCELLED", .reason = "", .exit = "", .node = ""};
  }
  return std::nullopt;
}

std::optional<TASK_REPORT> AskAccounting(const std::string& task) {
  const COMMAND_RESULT result =
      RunSlurmCommand({"sacct", "--noheader", "--parsable2", "--allocations", "--jobs=" + task,
                       "--format=State,Reason,ExitCode,NodeList"});
  std::istringstream line(result.text.substr(0, result.text.find('\n')));
  TASK_REPORT report;
  std::getline(line, report.state, '|');
  std::getline(line, report.reason, '|');
  std::getline(line, report.exit, '|');
  if (result.end.exit_status != 0 || !std::getline(line, report.node)) {
    return std::nullopt;
  }
  report.state = report.state.substr(0, report.state.find(' '));  // "CANCELLED by 1000"
  return report;
}

}  // namespace

COMMAND_RESULT RunSlurmCommand(const std::vector<std::string>& command) {
  std::map<std::string, std::string> kept;
  for (const char* name : {"SLURM_CONF", "SLURM_JWT"}) {
    if (const char* value = std::getenv(name)) {
      kept[name] = value;
    }
  }
  return RunCommand(
      command,
      {"SLURM_", "SQUEUE_", "SCANCEL_", "SCONTROL_", "SACCT_", "SBATCH_CLUSTERS", "SBATCH_WAIT"},
      kept);
}

std::string TASK_REPORT::Text() const {
  std::string text = "Slurm says " + state;
  if (!reason.empty() && reason != "None") {
    text += ", " + reason;
  }
  if (!exit.empty() && exit != "0:0") {
    text += ", exit status and signal " + exit;
  }
  return node.empty() ? text : text + ", on " + node;
}

std::optional<TASK_REPORT> ReportOfTask(const std::string& task) {
  const auto report = AskController(task);
  return report ? report : AskAccounting(task);
}
