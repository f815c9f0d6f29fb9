#include "check_run/check_run_command.h"

#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "app/program_version.h"
#include "app/run_parameters.h"
#include "base/data_type.h"
#include "check_run/run_check.h"
#include "control/controller_ifc.h"

namespace {

/// The arguments as the program itself would get them.
class PROGRAM_ARGUMENTS {
 public:
  explicit PROGRAM_ARGUMENTS(std::vector<std::string> words) : words_(std::move(words)) {
    words_.insert(words_.begin(), "resample");
    for (std::string& word : words_) {
      pointers_.push_back(word.data());
    }
    pointers_.push_back(nullptr);
  }

  int Count() const noexcept { return static_cast<int>(words_.size()); }
  char** Pointers() noexcept { return pointers_.data(); }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

void Print(const FINDINGS& findings) {
  for (const FINDINGS::FAILURE& failure : findings.Failures()) {
    std::string begin = "failure: ";
    for (const std::string& line : failure) {
      std::cout << begin << line << "\n";
      begin = "         ";
    }
  }
  for (const std::string& warning : findings.Warnings()) {
    std::cout << "warning: " << warning << "\n";
  }
}

std::string Megabytes(std::int64_t bytes) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(1) << static_cast<double>(bytes) / 1e6 << " MB";
  return text.str();
}

void Print(const RUN_FIGURES& figures) {
  const COVERAGE& coverage = figures.coverage;
  std::cout << "output: " << figures.n_samples << " x " << figures.n_lines << " pixels, "
            << DataTypeOf(figures.pixel_type).Name() << "\n"
            << "computed share: " << std::fixed << std::setprecision(6) << coverage.Share() << " ("
            << coverage.computed << " of " << coverage.looked_at << " pixels, ";
  if (coverage.step == 1) {
    std::cout << "all looked at)\n";
  } else {
    std::cout << "every " << coverage.step << "th sample and line looked at)\n";
  }
  std::cout << DescribePhysics(figures.physics);
  std::cout << "memory: " << Megabytes(figures.own_bytes) << ", besides "
            << Megabytes(figures.mapped_bytes) << " of mapped files\n";
  for (const DISK_NEED& disk : figures.disks) {
    std::cout << "disk of " << disk.path << ": up to " << Megabytes(disk.length) << " of "
              << Megabytes(disk.available) << " free\n";
  }
}

void CheckRun(const std::vector<std::string>& words) {
  PROGRAM_ARGUMENTS arguments(words);
  CONTROLLER_IFC controller;
  controller.ProtectFiles(RunFileParameters());
  FINDINGS findings;
  RUN_CHECK check(controller, findings);
  findings.Take([&] { controller.InitLookups(arguments.Count(), arguments.Pointers()); });
  findings.Take([&] { check.Execute(ProgramVersion()); });
  Print(findings);
  if (check.Figures()) {
    Print(*check.Figures());
  }
  const std::size_t failures = findings.Failures().size();
  if (failures > 0) {
    std::cout << "resample would fail: " << failures
              << (failures == 1 ? " reason\n" : " reasons\n");
    throw CLI::RuntimeError(EXIT_FAILURE);
  }
  std::cout << "resample would succeed\n";
}

}  // namespace

void AddCheckRunCommand(CLI::App& app) {
  CLI::App& command = *app.add_subcommand(
      "check-run", "Tell what a run of resample with these arguments would find wrong");
  command.footer(
      "Usage: slctool check-run [-NAME VALUE]...\n\n"
      "The arguments are those of resample, and so are the configuration file and the\n"
      "environment. Nothing is written, nobody is asked. Status 0: nothing would fail.");
  // No short form: all words with one dash are the run's.
  command.set_help_flag("--help", "Print this help message and exit");
  command.prefix_command();
  command.callback([&command] { CheckRun(command.remaining()); });
}
