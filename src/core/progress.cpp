#include "core/progress.h"

#include "logging/logging.h"

void LogProgress(const RESAMPLE_THR_ARG& argument, unsigned line) {
  const unsigned lines = argument.block.Count();
  if (argument.worker_number != 0 || lines <= 10 || line % (lines / 10) != 0) {
    return;
  }
  const double percent =
      static_cast<double>(static_cast<float>(line)) * 100.0 / static_cast<float>(lines);
  Log().Message(LOGGING_LEVEL_T::INFO, "%d %% done", static_cast<int>(percent));
}
