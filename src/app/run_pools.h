#pragma once

#include <memory>
#include <string>
#include <vector>

#include "control/controller_ifc.h"
#include "logging/version_record.h"
#include "pool/parameter_pool_read_write_change.h"

/// The pools that a run updates.
struct RUN_POOLS {
  std::string insar_name;  ///< as given
  std::shared_ptr<PARAMETER_POOL_READ_WRITE_CHANGE> insar;
  /// Receives the processing history; the INSAR pool itself when it is given by the same name.
  std::shared_ptr<PARAMETER_POOL_READ_WRITE_CHANGE> log;

  /// Both throw the controller's and the pools' errors. The INSAR pool comes first.
  void OpenInsarPool(CONTROLLER_IFC& controller);
  void OpenLogPool(CONTROLLER_IFC& controller);

  /// Throws ERROR_ARGUMENT when one of the pools is a file that the run only reads, and makes it
  /// forget what it was to write there. Empty names stand for files that are not used.
  void RefuseInputs(const std::vector<std::string>& inputs) const;

  /// Hands the log pool the history with this run, which began with the log. Throws the errors of
  /// `PROCESSING_HISTORY::AddRun`.
  void AddRunToHistory(const VERSION_RECORD& version) const;
  /// Updates and closes the INSAR pool, then the log pool with the history: whatever can fail does
  /// so before the history tells of a success. Throws the errors of the updates and the history.
  void Update(const VERSION_RECORD& version);
};
