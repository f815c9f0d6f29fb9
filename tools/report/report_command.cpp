#include "report/report_command.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "common/new_files.h"
#include "logging/logging.h"
#include "report/report_page.h"
#include "report/stack_page.h"

namespace {

struct REPORT_OPTIONS {
  std::string directory;
  std::string log;
  std::string master;
  std::string page;
};

void WriteStackPage(const REPORT_OPTIONS& options) {
  const std::string path = options.page.empty()
                               ? (std::filesystem::path(options.directory) / "report.html").string()
                               : options.page;
  WriteWholeFile(path, MakeStackPage(options.directory));
  std::cout << path << "\n";
}

void WriteReport(const REPORT_OPTIONS& options) {
  // A raster that is missing is told on the page.
  Log().SetScreenLevel(LOGGING_LEVEL_T::NO_MESSAGE);
  const RUN_RECORD run(options.directory, options.log);
  const std::string path = options.page.empty() ? run.Resolved("report.html") : options.page;
  WriteWholeFile(path, MakeReportPage(run, options.master));
  std::cout << path << "\n";
}

}  // namespace

void AddReportCommand(CLI::App& app) {
  CLI::App& command =
      *app.add_subcommand("report", "Make an HTML page of how a run, or a stack, went");
  const auto options = std::make_shared<REPORT_OPTIONS>();
  command
      .add_option("directory", options->directory,
                  "Directory that the run was started in, or a stack's directory")
      ->required()
      ->check(CLI::ExistingDirectory);
  command.add_option("--master", options->master,
                     "Master image: adds interferograms and coherence before and after");
  command.add_option("--log", options->log,
                     "Log file in the directory; usually log.resample or the only log.*");
  command.add_option("--out", options->page, "Page to write; usually report.html in the directory");
  command.callback([options] {
    IsStackDirectory(options->directory) ? WriteStackPage(*options) : WriteReport(*options);
  });
}
