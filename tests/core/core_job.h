#pragma once

#include <utility>
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
  /// Resamples blocks that end before the given lines; the last one ends with the output.
  template <class CODEC>
  void Resample(RESAMPLE_FUNCTION<CODEC> resample, std::vector<unsigned> block_ends = {});
  /// The same for the job's own type of pixels.
  void Resample(const CORE_VARIANT& variant, std::vector<unsigned> block_ends = {});

  std::vector<unsigned char> OutputBytes() const;
  std::vector<unsigned char> MaskBytes() const;

 private:
  TEMPORARY_DIRECTORY directory_;
  RESAMPLE_INPUT input_;
  RESAMPLE_OUTPUT output_;
  RESAMPLE_JOB job_;
};

template <class CODEC>
void CORE_JOB::Resample(RESAMPLE_FUNCTION<CODEC> resample, std::vector<unsigned> block_ends) {
  using PIXEL = typename CODEC::PIXEL;
  RESAMPLE_THR_ARG argument;
  argument.worker_number = 1;
  argument.Set(job_);
  block_ends.push_back(static_cast<unsigned>(job_.output_height));
  unsigned first = 0;
  for (const unsigned end : block_ends) {
    argument.block = URANGE<unsigned int>(first, end - first);
    resample(argument, input_.slave.Rows<PIXEL>(), output_.slave.Rows<PIXEL>());
    first = end;
  }
}
