#include "app/driver.h"

#include <memory>
#include <optional>

#include "app/error_report.h"
#include "app/resample_run.h"
#include "control/controller_ifc.h"
#include "control/standard_descriptors.h"
#include "logging/logging.h"
#include "logging/version_record.h"

namespace {

using enum LOGGING_LEVEL_T;

constexpr const char* program_name = "resample";

/// Comes first, before the log opens its file.
[[maybe_unused]] const bool standard_descriptors_are_open = OpenStandardDescriptors();

/// Configures the log before the entry runs, so that everything from the first line on has its
/// prefix and thresholds.
const LOGGING_USER program_log("", program_name, INFO, DEBUG);

VERSION_RECORD FillVersionRecord() {
  return {.display_name = "Resample",
          .version = "0.0.5",
          .compiled_by = "gcc4.5.0_64b",
          .compile_date = DateFromKeyword("$Date: 2020/02/06 13:09:23 $"),
          .configuration_file = "",
          .full_version = "resample.v0.0.5.linux.gcc4.5.0_64bit.default.20200206130923"};
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
  CONTROLLER_IFC controller;
  std::optional<RESAMPLE_RUN> run;
  VERSION_RECORD version = FillVersionRecord();
  try {
    controller.KeepFromLog({"INSAR_PARAMETER_POOL", "log_pp", "SLAVE_PARAMETER_POOL", "SlaveIn",
                            "MaskIn", "RG_MAPPING_FILE", "AZ_MAPPING_FILE"});
    controller.init(argc, argv, 1);
    version.configuration_file = controller.ConfigurationFileName();
    // The header uses its record up; the end of the run still needs one.
    Log().WriteHeader(std::make_unique<VERSION_RECORD>(version));
    run.emplace(controller);
    run->Execute(version);
    Log().WriteTrailer();
  } catch (...) {
    EndWithFailure(controller, run, version);
  }
  // The rasters stay mapped: the files are complete when the process ends.
  controller.FinishSuccessExit();
}
