#pragma once

#include <optional>
#include <vector>

#include "app/run_parameters.h"
#include "app/run_pools.h"
#include "check_run/coverage.h"
#include "check_run/disk_need.h"
#include "check_run/findings.h"
#include "check_run/run_physics.h"
#include "control/controller_ifc.h"
#include "core/resample_input.h"
#include "logging/version_record.h"

/// What a run without faults will need and do.
struct RUN_FIGURES {
  int n_samples = 0;
  int n_lines = 0;
  PIXEL_TYPE pixel_type{};
  COVERAGE coverage;
  RUN_PHYSICS physics;
  std::int64_t mapped_bytes =
      0;                       ///< of inputs and outputs, read and written through the page cache
  std::int64_t own_bytes = 0;  ///< kernel and row tables
  std::vector<EXPECTED_FILE> outputs;
  std::vector<DISK_NEED> disks;
};

/// A run that is only looked at: each step of a run that does not write, on its own, so that one
/// that fails does not hide the others; in place of those that write it finds out what they would
/// say. What depends on a step that has failed is left out.
class RUN_CHECK {
 public:
  /// So many pixels take about a second.
  static constexpr std::int64_t all_that_is_quick = std::int64_t{1} << 26;

  /// The share of the output that is computed is told from at most `most_pixels` of its pixels.
  RUN_CHECK(CONTROLLER_IFC& controller, FINDINGS& findings,
            std::int64_t most_pixels = all_that_is_quick)
      : controller_(controller), findings_(findings), most_pixels_(most_pixels) {}
  RUN_CHECK(const RUN_CHECK&) = delete;
  RUN_CHECK& operator=(const RUN_CHECK&) = delete;
  /// Lets no pool be updated.
  ~RUN_CHECK();

  /// Takes all steps. `version` would go into the processing history.
  void Execute(const VERSION_RECORD& version);

  /// Nothing while there are failures.
  const std::optional<RUN_FIGURES>& Figures() const noexcept { return figures_; }

 private:
  void ReadParameters();
  void CheckKernel();
  void MapInputs();
  void CheckOutput();
  void CheckCreate(const std::string& path, PIXEL_TYPE type);
  void CheckProcessing();
  void CheckPoolUpdates(const VERSION_RECORD& version);

  RUN_FIGURES Measure() const;
  std::int64_t PairsOfLines() const;
  std::vector<EXPECTED_FILE> Outputs(double share) const;
  std::int64_t MappedInputBytes() const;
  std::int64_t OwnBytes() const;
  void JudgeMapping();
  void JudgeFigures(const RUN_FIGURES& figures);

  CONTROLLER_IFC& controller_;
  FINDINGS& findings_;
  std::int64_t most_pixels_;
  RESAMPLE_INPUT input_;
  RUN_PARAMETERS parameters_;
  RUN_POOLS pools_;
  struct {
    bool inputs = false;
    bool mapping = false;
    bool kernel = false;
    bool size = false;
    bool outputs = false;
  } is_read_;  ///< the groups of the parameters
  bool has_slave_ = false;
  std::optional<RUN_FIGURES> figures_;
};
