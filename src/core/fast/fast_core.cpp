#include "core/fast/fast_core.h"

#include <algorithm>

#include "core/fast/strip.h"
#include "core/progress.h"
#include "core/resampling_core.h"

namespace {

/// A strip begins anew after this many lines, so that the pages of the slave and of the output
/// that it has touched serve the next strips too.
constexpr unsigned chunk_lines = 256;

const PIXEL_FUNCTIONS<INT_16_CODEC::PIXEL>& PixelFunctions(const ROW_FUNCTIONS& functions,
                                                           INT_16_CODEC) {
  return functions.int_16;
}

const PIXEL_FUNCTIONS<BINARY_16_CODEC::PIXEL>& PixelFunctions(const ROW_FUNCTIONS& functions,
                                                              BINARY_16_CODEC) {
  return functions.binary_16;
}

}  // namespace

template <class CODEC>
void ResampleBlockFast(const RESAMPLE_THR_ARG& argument, const typename CODEC::PIXEL* const* input,
                       typename CODEC::PIXEL* const* output, const ROW_FUNCTIONS& functions) {
  const RESAMPLE_JOB& job = argument.job;
  if (job.kernel->Length() < 1 || job.kernel->Length() > longest_kernel) {
    ResampleBlock<CODEC>(argument, input, output);
    return;
  }
  STRIP<CODEC> strip(job, input, output, functions, PixelFunctions(functions, CODEC()));
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

template void ResampleBlockFast<INT_16_CODEC>(const RESAMPLE_THR_ARG&,
                                              const INT_16_CODEC::PIXEL* const*,
                                              INT_16_CODEC::PIXEL* const*, const ROW_FUNCTIONS&);
template void ResampleBlockFast<BINARY_16_CODEC>(const RESAMPLE_THR_ARG&,
                                                 const BINARY_16_CODEC::PIXEL* const*,
                                                 BINARY_16_CODEC::PIXEL* const*,
                                                 const ROW_FUNCTIONS&);
