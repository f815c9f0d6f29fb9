#pragma once

#include <functional>
#include <vector>

#include "core/core_variant.h"
#include "core/resample_input.h"
#include "support/scene.h"
#include "support/temporary_directory.h"

/// A scene, set up for the core in memory.
class CORE_JOB {
 public:
  /// Written nowhere by the core: what outputs hold before they are resampled.
  static constexpr unsigned char untouched = 77;

  explicit CORE_JOB(const SCENE& scene);

  RESAMPLE_JOB& Job() { return job_; }

  void ClearOutputs();
  /// Has blocks resampled that end before the given lines; the last one ends with the output.
  void Resample(const std::function<void(const RESAMPLE_THR_ARG&)>& resample,
                std::vector<unsigned> block_ends = {});
  void Resample(const CORE_VARIANT& variant, std::vector<unsigned> block_ends = {});

  std::vector<unsigned char> OutputBytes() const;
  std::vector<unsigned char> MaskBytes() const;

 private:
  TEMPORARY_DIRECTORY directory_;
  RESAMPLE_INPUT input_;
  RESAMPLE_OUTPUT output_;
  RESAMPLE_JOB job_;
};
