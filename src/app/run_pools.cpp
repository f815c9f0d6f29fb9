#include "app/run_pools.h"

#include "app/run_parameters.h"
#include "control/processing_history.h"
#include "logging/logging.h"

void RUN_POOLS::OpenInsarPool(CONTROLLER_IFC& controller) {
  insar_name = MandatoryParameter(controller, "INSAR_PARAMETER_POOL");
  insar = std::make_shared<PARAMETER_POOL_READ_WRITE_CHANGE>(insar_name.c_str());
}

void RUN_POOLS::OpenLogPool(CONTROLLER_IFC& controller) {
  const std::string name = MandatoryParameter(controller, "log_pp");
  log =
      name == insar_name ? insar : std::make_shared<PARAMETER_POOL_READ_WRITE_CHANGE>(name.c_str());
}

void RUN_POOLS::AddRunToHistory(const VERSION_RECORD& version) const {
  PROCESSING_HISTORY().AddRun(*log, {.name = version.display_name,
                                     .version = version.version,
                                     .date = version.compile_date,
                                     .start_time = Log().StartTime()});
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
