#include "app/run_pools.h"

#include "app/mandatory_parameter.h"
#include "base/error_exception.h"
#include "base/memory_for.h"
#include "base/same_file.h"
#include "control/processing_history.h"
#include "logging/logging.h"

using enum LOGGING_LEVEL_T;

namespace {

std::shared_ptr<PARAMETER_POOL_READ_WRITE_CHANGE> OpenPool(const std::string& name) {
  return WithMemoryFor("parameter file", name, [&] {
    return std::make_shared<PARAMETER_POOL_READ_WRITE_CHANGE>(name.c_str());
  });
}

}  // namespace

void RUN_POOLS::OpenInsarPool(CONTROLLER_IFC& controller) {
  insar_name = MandatoryParameter(controller, "INSAR_PARAMETER_POOL");
  insar = OpenPool(insar_name);
}

void RUN_POOLS::OpenLogPool(CONTROLLER_IFC& controller) {
  const std::string name = MandatoryParameter(controller, "log_pp");
  log = name == insar_name ? insar : OpenPool(name);
}

void RUN_POOLS::RefuseInputs(const std::vector<std::string>& inputs) const {
  for (const auto& pool : {insar, log}) {
    for (const std::string& input : inputs) {
      if (pool && !input.empty() && IsSamePath(pool->FileName(), input)) {
        Log() << ALARM << "pool would be written into another file of the run: " << pool->FileName()
              << " is " << input;
        pool->Discard();
        throw ERROR_ARGUMENT();
      }
    }
  }
}

void RUN_POOLS::AddRunToHistory(const VERSION_RECORD& version) const {
  WithMemoryFor("the processing history in", log->FileName(), [&] {
    PROCESSING_HISTORY().AddRun(*log, {.name = version.display_name,
                                       .version = version.version,
                                       .date = version.compile_date,
                                       .start_time = Log().StartTime()});
  });
}

void RUN_POOLS::Update(const VERSION_RECORD& version) {
  if (log != insar) {
    insar->Update();
  }
  {
    const POOL_LOCK lock = log->LockForUpdate();
    AddRunToHistory(version);
    log->Update();
  }
  log.reset();
  insar.reset();
}
