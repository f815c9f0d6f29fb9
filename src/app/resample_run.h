#pragma once

#include "app/run_parameters.h"
#include "app/run_pools.h"
#include "control/controller_ifc.h"
#include "core/resample_input.h"
#include "logging/version_record.h"

/// One resampling run: owns every long-lived object and takes the steps of the run in the order
/// in which the log announces them. Steps fail by the errors of what they use.
class RESAMPLE_RUN {
 public:
  explicit RESAMPLE_RUN(CONTROLLER_IFC& controller) : controller_(controller) {}
  RESAMPLE_RUN(const RESAMPLE_RUN&) = delete;
  RESAMPLE_RUN& operator=(const RESAMPLE_RUN&) = delete;

  /// Takes all steps. `version` and the log's start time go into the processing history.
  void Execute(const VERSION_RECORD& version);

 private:
  void ReadParameters();
  void InitializeKernels();
  void MapSlaveAndMask();
  void SetupMapping();
  void AllocateOutput();
  void SetupSlcParameters();
  void PerformProcessing();
  void ReleaseMemory(const VERSION_RECORD& version);

  CONTROLLER_IFC& controller_;
  RESAMPLE_OUTPUT output_;
  RESAMPLE_INPUT input_;
  RUN_PARAMETERS parameters_;
  RUN_POOLS pools_;
};
