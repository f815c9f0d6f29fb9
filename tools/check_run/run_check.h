#pragma once

#include <optional>
#include <vector>

#include "app/resample_run.h"
#include "check_run/coverage.h"
#include "check_run/disk_need.h"
#include "check_run/findings.h"

/// What a run without faults will need and do.
struct RUN_FIGURES {
  int n_samples = 0;
  int n_lines = 0;
  PIXEL_TYPE pixel_type{};
  COVERAGE coverage;
  std::int64_t mapped_bytes =
      0;                       ///< of inputs and outputs, read and written through the page cache
  std::int64_t own_bytes = 0;  ///< kernel and row tables
  std::vector<NEW_FILE> outputs;
  std::vector<DISK_NEED> disks;
};

/// A run that is only looked at: it takes all steps of a run but those that write, in whose place
/// it finds out what they would say.
class RUN_CHECK : public RESAMPLE_RUN {
 public:
  /// So many pixels take about a second.
  static constexpr std::int64_t all_that_is_quick = std::int64_t{1} << 26;

  /// The share of the output that is computed is told from at most `most_pixels` of its pixels.
  RUN_CHECK(CONTROLLER_IFC& controller, FINDINGS& findings,
            std::int64_t most_pixels = all_that_is_quick)
      : RESAMPLE_RUN(controller, findings), findings_(findings), most_pixels_(most_pixels) {}
  /// Lets no pool be updated.
  ~RUN_CHECK() override;

  /// Nothing while there are failures.
  const std::optional<RUN_FIGURES>& Figures() const noexcept { return figures_; }

 protected:
  void AllocateOutput() override;
  void PerformProcessing() override;
  void ReleaseMemory(const VERSION_RECORD& version) override;

 private:
  void CheckCreate(const std::string& path, PIXEL_TYPE type);
  bool HasSlave() const { return input_slave_.PixelType() != PIXEL_TYPE::OTHERS; }
  RUN_FIGURES Measure() const;
  std::vector<NEW_FILE> Outputs(double share) const;
  std::int64_t MappedInputBytes() const;
  std::int64_t OwnBytes() const;
  void JudgeMapping();
  void JudgeFigures(const RUN_FIGURES& figures);

  FINDINGS& findings_;
  std::int64_t most_pixels_;
  std::optional<RUN_FIGURES> figures_;
};
