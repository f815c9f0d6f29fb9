#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>

#include "app/parameter_table.h"
#include "app/program_version.h"
#include "base/error_exception.h"
#include "commands/commands.h"
#include "logging/logging.h"
#include "logging/printable_text.h"

namespace {

/// Nothing was started.
constexpr int refused = 2;

/// Only what goes wrong is told.
const LOGGING_USER stack_log("", "resample-stack", LOGGING_LEVEL_T::ALARM, LOGGING_LEVEL_T::ALARM);

/// A description gives all parameters of its runs: none may come from the environment by chance.
void ForgetParametersInEnvironment() {
  for (const PARAMETER_ENTRY& parameter : Parameters()) {
    if (parameter.source != PARAMETER_SOURCE::ENVIRONMENT) {
      ::unsetenv(parameter.name.c_str());
    }
  }
}

/// Line by line, without what would steer the terminal.
void Tell(const std::string& text) {
  std::istringstream lines("resample-stack: " + text);
  for (std::string line; std::getline(lines, line);) {
    std::cerr << PrintableText(line) << "\n";
  }
}

int Run(int argc, char** argv) {
  CLI::App app{"Resamples the slaves of a stack, each by a run of resample."};
  app.set_version_flag("--version", ProgramVersion().version);
  AddStart(app);
  AddStatusCommand(app);
  AddRetryCommand(app);
  AddStopCommand(app);
  AddCleanCommand(app);
  AddRunCommand(app);
  app.allow_extras();
  try {
    app.parse(argc, argv);
  } catch (const CLI::RuntimeError& error) {
    return error.get_exit_code();
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == EXIT_SUCCESS ? EXIT_SUCCESS : refused;
  }
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  // Who no longer reads the screen must not end the runs; and ends of children are to be told,
  // whatever this process was started with.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGCHLD, SIG_DFL);
  try {
    ForgetParametersInEnvironment();
    return Run(argc, argv);
  } catch (const ERROR_EXCEPTION& error) {
    Tell(error.what());
  } catch (const std::exception& error) {
    Tell(error.what());
  }
  return refused;
}
