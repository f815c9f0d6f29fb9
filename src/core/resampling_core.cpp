#include "core/resampling_core.h"

#include "core/block_findings.h"
#include "core/codec_visit.h"
#include "core/pixel_evaluation.h"
#include "core/progress.h"

namespace {

template <class CODEC>
void ResampleAs(CODEC, const RESAMPLE_THR_ARG& argument) {
  using PIXEL = typename CODEC::PIXEL;
  const RESAMPLE_JOB& job = argument.job;
  const PIXEL_EVALUATION<CODEC> evaluation(job, job.input_slave->Rows<PIXEL>());
  PIXEL* const* output = job.output_slave->Rows<PIXEL>();
  unsigned char* const* output_mask =
      job.output_mask != nullptr ? job.output_mask->Rows<unsigned char>() : nullptr;
  BLOCK_FINDINGS findings(job);

  for (unsigned line = argument.block.First(); line <= argument.block.Last(); ++line) {
    LogProgress(argument, line);
    for (int sample = 0; sample < job.output_width; ++sample) {
      const double slave_range = job.mapping->GetSlaveRange(sample, line);
      const double slave_azimuth = job.mapping->GetSlaveAzimuth(sample, line);
      if (!evaluation.IsComputed(slave_range, slave_azimuth)) {
        continue;
      }
      const INTERPOLATED result = evaluation.At(slave_range, slave_azimuth);
      const typename CODEC::PIXEL pixel = {CODEC::Encode(result.re), CODEC::Encode(result.im)};
      output[line][sample] = pixel;
      findings.CountAtEnds<CODEC>(pixel);
      findings.met_non_finite |= !result.IsUsual();
      if (output_mask != nullptr) {
        output_mask[line][sample] = result.valid;
      }
    }
    CountDone(job, job.output_width);
  }
}

}  // namespace

void ResampleBlock(const RESAMPLE_THR_ARG& argument) {
  VisitCodec(argument.job.input_slave->PixelType(),
             [&](auto codec) { ResampleAs(codec, argument); });
}
