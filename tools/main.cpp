#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "app/program_version.h"
#include "base/error_exception.h"
#include "check_run/check_run_command.h"
#include "common/interruption.h"
#include "compare/compare_command.h"
#include "doppler/doppler_command.h"
#include "export/export_command.h"
#include "import/import_command.h"
#include "info/info_command.h"
#include "interferogram/interferogram_command.h"
#include "logging/logging.h"
#include "mask/mask_command.h"
#include "match/match_command.h"
#include "offsets/offsets_command.h"
#include "png/png_command.h"
#include "pools/pool_command.h"
#include "product/product_command.h"
#include "report/report_command.h"
#include "scene/scene_command.h"
#include "system/c_locale.h"
#include "vrt/vrt_command.h"

namespace {

/// Only what goes wrong is told: the tools write their results to standard output.
const LOGGING_USER tool_log("", "slctool", LOGGING_LEVEL_T::ALARM, LOGGING_LEVEL_T::ALARM);

/// Each adds one subcommand, whose callback does the work and throws what goes wrong.
constexpr void (*add_commands[])(CLI::App&) = {
    AddSceneCommand,         AddCompareCommand, AddPngCommand,      AddInfoCommand,
    AddDopplerCommand,       AddProductCommand, AddImportCommand,   AddExportCommand,
    AddMaskCommand,          AddVrtCommand,     AddMatchCommand,    AddOffsetsCommand,
    AddInterferogramCommand, AddPoolCommand,    AddCheckRunCommand, AddReportCommand};

/// The word that stands where a subcommand should; empty for anything else that is wrong.
std::string UnknownSubcommand(const CLI::App& app) {
  const CLI::App* command = &app;
  while (!command->get_subcommands().empty()) {
    command = command->get_subcommands().front();
  }
  const std::vector<std::string> unknown = command->remaining();
  return command->get_require_subcommand_min() > 0 && !unknown.empty() ? unknown.front() : "";
}

int Run(int argc, char** argv) {
  CLI::App app{"Makes, converts, measures and shows the files around a run of resample."};
  app.set_version_flag("--version", ProgramVersion().version);
  app.require_subcommand(1);
  for (const auto add_command : add_commands) {
    add_command(app);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::RequiredError& error) {
    const std::string unknown = UnknownSubcommand(app);
    return app.exit(unknown.empty() ? error
                                    : CLI::RequiredError("no such subcommand or option: " + unknown,
                                                         CLI::ExitCodes::RequiredError));
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  }
  return EXIT_SUCCESS;
}

/// A result that nobody gets is none.
int WithWrittenOutput(int status) {
  errno = 0;
  std::cout.flush();
  if (std::cout) {
    return status;
  }
  std::cerr << "slctool: can not write the output"
            << (errno != 0 ? ": " + SystemErrorText(errno) : "") << "\n";
  return EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  const INTERRUPTION interruption;
  try {
    return WithWrittenOutput(Run(argc, argv));
  } catch (const ERROR_EXCEPTION& error) {
    std::cerr << "slctool: " << error.what() << "\n";
  } catch (const std::exception& error) {
    std::cerr << "slctool: " << error.what() << "\n";
  }
  return EXIT_FAILURE;
}
