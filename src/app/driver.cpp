#include "app/driver.h"

#include <memory>
#include <new>
#include <optional>

#include "app/error_report.h"
#include "app/parameter_table.h"
#include "app/program_version.h"
#include "app/resample_run.h"
#include "app/run_parameters.h"
#include "base/memory_for.h"
#include "control/controller_ifc.h"
#include "control/standard_descriptors.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr const char* program_name = "resample";

/// The history tells of a success by now, so that a trailer without memory must not fail the run.
void WriteTrailer() {
  try {
    Log().WriteTrailer();
  } catch (const std::bad_alloc&) {
    Log() << ALARM << "not enough memory for the end of the log";
  }
}

/// The one handler of the program: every failure ends here.
[[noreturn]] void EndWithFailure(CONTROLLER_IFC& controller, std::optional<RESAMPLE_RUN>& run,
                                 const VERSION_RECORD& version) {
  LogCurrentException();
  Log() << ALARM << "KVT_MSG|ERROR|" << version.display_name << " terminated with error!\n";
  run.reset();
  controller.FinishFailureExit();
}

}  // namespace

void RunDriver(int argc, char** argv) {
  OpenStandardDescriptors();
  // Configures the log before all that writes to it, so that everything from the first line on has
  // its prefix and thresholds.
  static const LOGGING_USER program_log("", program_name, INFO, DEBUG);
  CONTROLLER_IFC controller;
  std::optional<RESAMPLE_RUN> run;
  VERSION_RECORD version = ProgramVersion();
  try {
    WithMemoryFor("the start of", program_name, [&] {
      controller.ProtectFiles(RunFileParameters());
      controller.ExplainParameters(ParameterHint);
      controller.init(argc, argv, 1);
      version.configuration_file = controller.ConfigurationFileName();
      // The header uses its record up; the end of the run still needs one.
      Log().WriteHeader(std::make_unique<VERSION_RECORD>(version));
      run.emplace(controller);
    });
    run->Execute(version);
    WriteTrailer();
    // The rasters stay mapped: the files are complete when the process ends.
    controller.FinishSuccessExit();
  } catch (...) {
    EndWithFailure(controller, run, version);
  }
}
