#pragma once

#include <optional>

#include "core/resample_input.h"

/// Resamples the input into the output with so many workers, or as many as `NumberOfProcessors`
/// tells, and the core that `ChooseCoreVariant` chooses. Pixels without a position in the slave are
/// left as they are. The result does not depend on the number of workers.
///
/// Throws what `RESAMPLE_INPUT::Job`, `ResampleThread` and `THREADS` throw.
void Resample(const RESAMPLE_INPUT& input, RESAMPLE_OUTPUT& output,
              std::optional<int> workers = std::nullopt);
