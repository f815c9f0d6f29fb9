#include "core/fast/fast_core.h"

#include <algorithm>

#include "core/codec_visit.h"
#include "core/fast/strip.h"
#include "core/progress.h"
#include "core/resampling_core.h"

namespace {

/// A strip begins anew after this many lines, so that the pages of the slave and of the output
/// that it has touched serve the next strips too.
constexpr unsigned chunk_lines = 256;

template <class CODEC>
void ResampleAs(CODEC, const RESAMPLE_THR_ARG& argument, const ROW_FUNCTIONS& functions) {
  using PIXEL = typename CODEC::PIXEL;
  const RESAMPLE_JOB& job = argument.job;
  STRIP<CODEC> strip(job, job.input_slave->Rows<PIXEL>(), job.output_slave->Rows<PIXEL>(),
                     functions, functions.pixels.Of<PIXEL>());
  const unsigned end_line = argument.block.First() + argument.block.Count();
  unsigned reported = argument.block.First();
  for (unsigned line = argument.block.First(); line < end_line; line += chunk_lines) {
    const unsigned chunk_end = std::min(line + chunk_lines, end_line);
    // A 64-bit count: the column behind the last strip need not fit into an int.
    for (std::int64_t column = 0; column < job.output_width; column += strip_columns) {
      strip.Resample(static_cast<int>(column), line, chunk_end - 1);
      const std::int64_t columns = std::min<std::int64_t>(strip_columns, job.output_width - column);
      CountDone(job, columns * (chunk_end - line));
    }
    for (; reported < chunk_end; ++reported) {
      LogProgress(argument, reported);
    }
  }
}

}  // namespace

void ResampleBlockFast(const RESAMPLE_THR_ARG& argument, const ROW_FUNCTIONS& functions) {
  const int length = argument.job.kernel->Length();
  if (length < shortest_kernel || length > longest_kernel) {
    ResampleBlock(argument);
    return;
  }
  VisitCodec(argument.job.input_slave->PixelType(),
             [&](auto codec) { ResampleAs(codec, argument, functions); });
}
