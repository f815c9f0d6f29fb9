#pragma once

#include <memory>
#include <optional>
#include <string>

#include "annotation/image_mode.h"
#include "app/run_parameters.h"
#include "base/setup_steps.h"
#include "control/controller_ifc.h"
#include "core/doppler_centroid_model.h"
#include "core/resample_thr_arg.h"
#include "interpolation/interpolation_kernel.h"
#include "logging/version_record.h"
#include "mapping/mapping_base.h"
#include "pool/parameter_pool.h"
#include "pool/parameter_pool_read_write_change.h"
#include "raster/mem_mgr.h"

/// One resampling run: owns every long-lived object and takes the steps of the run in the order
/// in which the log announces them. Steps fail by the errors of what they use.
///
/// A check of a run is a run too, with other `SETUP_STEPS` and with the steps replaced that write.
class RESAMPLE_RUN {
 public:
  explicit RESAMPLE_RUN(CONTROLLER_IFC& controller, const SETUP_STEPS& steps = first_error_ends)
      : controller_(controller), steps_(steps) {}
  RESAMPLE_RUN(const RESAMPLE_RUN&) = delete;
  RESAMPLE_RUN& operator=(const RESAMPLE_RUN&) = delete;
  virtual ~RESAMPLE_RUN() = default;

  /// Takes all steps. `version` and the log's start time go into the processing history.
  void Execute(const VERSION_RECORD& version);

 protected:
  virtual void AllocateOutput();
  virtual void PerformProcessing();
  virtual void ReleaseMemory(const VERSION_RECORD& version);

  void CheckOutputPaths() const;
  void RegisterHistory(const VERSION_RECORD& version);

  static const SETUP_STEPS first_error_ends;

 private:
  void ReadParameters();
  void InitializeKernels();
  void MapSlaveAndMask();
  void SetupMapping();
  void SetupSlcParameters();

  void OpenPools();
  void SetupMatrixMapping();
  PARAMETER_POOL_READ_WRITE_CHANGE& HistoryPool() const;
  void WriteHistory(const VERSION_RECORD& version);
  void CheckSlaveSides() const;
  void CheckMaskFitsSlave() const;

 protected:
  CONTROLLER_IFC& controller_;
  const SETUP_STEPS& steps_;
  MEM_MGR output_slave_;
  MEM_MGR input_slave_;
  MEM_MGR input_mask_;
  MEM_MGR output_mask_;
  RUN_PARAMETERS parameters_;
  std::optional<std::string> insar_pool_name_;
  std::unique_ptr<PARAMETER_POOL_READ_WRITE_CHANGE> insar_pool_;
  /// Whether the INSAR pool is the log pool as well; there is no second pool then.
  bool has_one_pool_ = false;
  std::unique_ptr<PARAMETER_POOL_READ_WRITE_CHANGE> log_pool_;
  std::unique_ptr<PARAMETER_POOL> slave_pool_;
  std::unique_ptr<INTERPOLATION_KERNEL> kernel_;
  std::unique_ptr<MAPPING_BASE> mapping_;
  DOPPLER_CENTROID_MODEL doppler_;
  ZARVO::ImageMode imaging_mode_;
};
