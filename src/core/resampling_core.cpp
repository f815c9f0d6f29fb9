#include "core/resampling_core.h"

#include "core/pixel_evaluation.h"
#include "core/progress.h"

template <class CODEC>
void ResampleBlock(const RESAMPLE_THR_ARG& argument, const typename CODEC::PIXEL* const* input,
                   typename CODEC::PIXEL* const* output) {
  const RESAMPLE_JOB& job = argument.job;
  const PIXEL_EVALUATION<CODEC> evaluation(job, input);
  unsigned char* const* output_mask =
      job.output_mask != nullptr ? job.output_mask->Rows<unsigned char>() : nullptr;

  for (unsigned line = argument.block.First(); line <= argument.block.Last(); ++line) {
    LogProgress(argument, line);
    for (int sample = 0; sample < job.output_width; ++sample) {
      const double slave_range = job.mapping->GetSlaveRange(sample, line);
      const double slave_azimuth = job.mapping->GetSlaveAzimuth(sample, line);
      if (!evaluation.IsComputed(slave_range, slave_azimuth)) {
        continue;
      }
      const INTERPOLATED result = evaluation.At(slave_range, slave_azimuth);
      output[line][sample] = {CODEC::Encode(result.re), CODEC::Encode(result.im)};
      if (output_mask != nullptr) {
        output_mask[line][sample] = result.valid;
      }
    }
    CountDone(job, job.output_width);
  }
}

template void ResampleBlock<INT_16_CODEC>(const RESAMPLE_THR_ARG&,
                                          const INT_16_CODEC::PIXEL* const*,
                                          INT_16_CODEC::PIXEL* const*);
template void ResampleBlock<BINARY_16_CODEC>(const RESAMPLE_THR_ARG&,
                                             const BINARY_16_CODEC::PIXEL* const*,
                                             BINARY_16_CODEC::PIXEL* const*);
