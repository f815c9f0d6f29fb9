#include "report/run_record.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "description/stack_folder.h"
#include "run/slave_plan.h"

namespace {

namespace fs = std::filesystem;

constexpr std::string_view log_begin = "log.";

fs::path FindLog(const fs::path& directory, const std::string& log_name) {
  if (!log_name.empty()) {
    return directory / log_name;
  }
  // The run of a stack's slave has a log for each attempt, and a link to the last one.
  const std::string slave = fs::canonical(directory).filename().string();
  for (const std::string& name : {std::string("resample"), slave}) {
    if (fs::path usual = directory / std::string(log_begin).append(name); fs::exists(usual)) {
      return usual;
    }
  }
  std::vector<fs::path> logs;
  for (const auto& entry : fs::directory_iterator(directory)) {
    if (entry.path().filename().string().starts_with(log_begin)) {
      logs.push_back(entry.path());
    }
  }
  if (logs.size() != 1) {
    throw std::runtime_error((logs.empty() ? "no log in " : "more than one log in ") +
                             directory.string() + "; --log names one");
  }
  return logs.front();
}

std::string NameOf(const fs::path& log) {
  const std::string name = log.filename().string();
  return name.starts_with(log_begin) ? name.substr(log_begin.size()) : "resample";
}

/// Of a stack's slave, whose run wrote under another name.
std::optional<std::string> FinalOutput(const SLAVE_FOLDER& slave, std::string_view parameter) {
  const SLAVE_PLAN plan = ReadSlavePlan(slave);
  const auto output = plan.parameters.find(std::string(parameter));
  return output == plan.parameters.end() ? std::nullopt : std::optional(output->second);
}

}  // namespace

RUN_RECORD::RUN_RECORD(const fs::path& directory, const std::string& log_name)
    : directory_(directory),
      log_path_(FindLog(directory, log_name)),
      log_(log_path_.string()),
      name_(NameOf(log_path_)) {}

std::string RUN_RECORD::StatusFile(const char* kind) const {
  const fs::path status = log_.Parameter("status").value_or("");
  return Resolved((status / (kind + name_)).string());
}

RUN_STATE RUN_RECORD::State() const {
  if (fs::exists(StatusFile("OK."))) {
    return RUN_STATE::SUCCEEDED;
  }
  return log_.Texts("ALARM").empty() ? RUN_STATE::UNFINISHED : RUN_STATE::FAILED;
}

std::string RUN_RECORD::Resolved(const std::string& path) const {
  return (directory_ / path).lexically_normal().string();
}

std::optional<std::string> RUN_RECORD::File(std::string_view parameter) const {
  const auto path = log_.Parameter(parameter);
  return path ? std::optional(Resolved(*path)) : std::nullopt;
}

std::optional<std::string> RUN_RECORD::Output(std::string_view parameter) const {
  if (!log_.Has("* Setup SLC parameters")) {
    return std::nullopt;
  }
  const SLAVE_FOLDER slave(fs::canonical(directory_));
  return fs::exists(slave.PlanFile()) ? FinalOutput(slave, parameter) : File(parameter);
}

std::optional<double> RUN_RECORD::Seconds() const {
  const auto logged = log_.ExecutionSeconds();
  std::error_code missing;
  const auto start = fs::last_write_time(directory_ / "current_process.pid", missing);
  const auto end = missing ? start : fs::last_write_time(StatusFile("OK."), missing);
  const double measured = std::chrono::duration<double>(end - start).count();
  const bool agrees = !missing && measured > 0.0 && logged && std::abs(measured - *logged) < 2.0;
  return agrees ? measured : logged;
}

std::int64_t RUN_RECORD::Number(std::string_view parameter) const {
  const auto text = log_.Parameter(parameter);
  return text ? std::strtoll(text->c_str(), nullptr, 10) : 0;
}
