#pragma once

#include <cstdint>

#include "core/resample_thr_arg.h"

/// What one worker finds in its block; added to the findings of the job at the end.
class BLOCK_FINDINGS {
 public:
  explicit BLOCK_FINDINGS(const RESAMPLE_JOB& job) : of_job_(job.findings) {}
  BLOCK_FINDINGS(const BLOCK_FINDINGS&) = delete;
  BLOCK_FINDINGS& operator=(const BLOCK_FINDINGS&) = delete;
  ~BLOCK_FINDINGS() {
    if (of_job_ != nullptr) {
      of_job_->at_ends += at_ends;
      if (met_non_finite) {
        of_job_->met_non_finite = true;
      }
    }
  }

  template <class CODEC>
  void CountAtEnds(const typename CODEC::PIXEL& pixel) {
    at_ends += (CODEC::IsAtEnd(pixel.re) ? 1 : 0) + (CODEC::IsAtEnd(pixel.im) ? 1 : 0);
  }

  std::int64_t at_ends = 0;
  bool met_non_finite = false;

 private:
  RESAMPLE_FINDINGS* of_job_;
};
