#pragma once

#include "core/resample_thr_arg.h"

/// Logs how far the run is, at every tenth of the block's lines. Worker 0 begins at line 0, so its
/// own lines stand for the progress of the whole run; the others log nothing.
void LogProgress(const RESAMPLE_THR_ARG& argument, unsigned line);
