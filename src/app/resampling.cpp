#include "app/resampling.h"

#include <atomic>

#include "app/progress_line.h"
#include "app/resample_thread.h"
#include "app/threads.h"
#include "control/processors.h"
#include "core/core_variant.h"
#include "logging/logging.h"

using enum LOGGING_LEVEL_T;

namespace {

/// A non-finite pixel of the slave makes every output that reads it non-finite, so that the slave
/// is only looked at when there was such an output.
std::int64_t NonFiniteInputs(const RESAMPLE_INPUT& input, const RESAMPLE_FINDINGS& findings) {
  return findings.met_non_finite ? input.CountNonFinite() : 0;
}

}  // namespace

void Resample(const RESAMPLE_INPUT& input, RESAMPLE_OUTPUT& output, std::optional<int> workers) {
  Log().Message(INFO, "  - Define work range");
  const URANGE<unsigned int> lines(0, static_cast<unsigned>(input.n_lines));

  Log().Message(INFO, "  - Set thread argument");
  std::atomic<std::int64_t> pixels_done = 0;
  RESAMPLE_FINDINGS findings;
  RESAMPLE_WORK work;
  work.Set(input.Job(output));
  work.job.pixels_done = &pixels_done;
  work.job.findings = &findings;
  work.core = &ChooseCoreVariant();

  Log().Message(INFO, "  - Setup threads");
  THREADS<RESAMPLE_WORK, unsigned int> threads;
  threads.Setup(work, lines, ResampleThread, workers ? *workers : NumberOfProcessors());
  Log().Message(INFO, "  - Run");
  {
    const PROGRESS_LINE progress(pixels_done, std::int64_t{input.n_samples} * input.n_lines);
    threads.Run();
    threads.Join();
  }
  const std::int64_t non_finite = NonFiniteInputs(input, findings);
  Log() << INFO << "  - Saturated output components: " << findings.at_ends.load()
        << ", non-finite inputs under valid mask: " << non_finite;
}
