#include "run_folder.h"

#include <unistd.h>

#include <algorithm>
#include <sstream>

namespace {

/// Standard error without a warning that concerns the sanitizer only: it does not know the stack
/// of a thread that a signal reaches before its first function.
std::string SanitizerReports(const std::string& errors) {
  std::string reports;
  std::istringstream lines(errors);
  bool about_stack = false;
  for (std::string line; std::getline(lines, line);) {
    about_stack =
        about_stack || line.find("ignoring requested __asan_handle_no_return") != std::string::npos;
    reports += about_stack ? "" : line + "\n";
    about_stack = about_stack && !line.starts_with("For details see ");
  }
  return reports;
}

void ExpectEnd(const RUN_FOLDER& folder, const PROCESS_END& end, int status) {
  const std::string marker = status == 0 ? "OK.run" : "ERROR.run";
  EXPECT_EQ(end.exit_status, status) << end.screen;
  EXPECT_EQ(end.signal, 0);
  EXPECT_EQ(SanitizerReports(end.errors), "");
  EXPECT_FALSE(folder.Exists(status == 0 ? "ERROR.run" : "OK.run"));
  EXPECT_EQ(folder.Exists(marker) ? folder.Content(marker) : "no file", std::to_string(status));
}

}  // namespace

PROCESS_SETTINGS RUN_FOLDER::Settings() const {
  std::string configuration;
  for (const auto& [name, value] : parameters) {
    configuration.append(name).append(" ").append(value).append("\n");
  }
  Write("pcf.run", configuration);
  PROCESS_SETTINGS settings;
  settings.program = RESAMPLE_PROGRAM;
  settings.arguments = arguments;
  settings.environment = environment;
  settings.directory = Directory();
  settings.keyboard = keyboard;
  // A run that hangs fails its test, by SIGALRM, and does not hold up all others.
  settings.prepare = [] {
    ::alarm(200);
    return true;
  };
  return settings;
}

std::vector<std::string> RUN_FOLDER::LogLines(std::string_view begin) const {
  std::vector<std::string> lines;
  std::istringstream log(Content("log.run"));
  for (std::string line; std::getline(log, line);) {
    if (line.starts_with(begin)) {
      lines.push_back(line.substr(begin.size()));
    }
  }
  return lines;
}

std::string RUN_FOLDER::Alarms() const {
  std::string alarms;
  for (const std::string& line : LogLines(alarm_begin)) {
    alarms += line + "\n";
  }
  return alarms;
}

long RUN_FOLDER::CountLogLines(std::string_view line) const {
  const std::vector<std::string> lines = LogLines();
  return std::count(lines.begin(), lines.end(), line);
}

void ExpectSuccess(const RUN_FOLDER& folder, const PROCESS_END& end) {
  ExpectEnd(folder, end, 0);
}

void ExpectFailure(const RUN_FOLDER& folder, const PROCESS_END& end) {
  ExpectEnd(folder, end, 1);
}
