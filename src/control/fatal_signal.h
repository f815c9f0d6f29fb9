#pragma once

#include <atomic>

#include "control/status_files.h"

/// What the handler needs to know of the run that it ends.
struct SIGNALLED_RUN {
  std::atomic<const char*> program = "unknown";  ///< its name in the supervisor's line
  std::atomic<bool> tells_supervisor = false;
  std::atomic<const STATUS_FILES*> status_files = nullptr;  ///< where it is marked as failed
};

/// Tells the handler of the run of this process, null for none. What the record points to must
/// live as long as it is published.
void PublishRun(const SIGNALLED_RUN* run) noexcept;
/// The run that is published, null without one.
const SIGNALLED_RUN* PublishedRun() noexcept;

/// Installs the handler for the signals that end a run: hangup, interrupt, quit, termination,
/// abort, urgent socket condition, exceeded limits, and the faults (illegal instruction, bus
/// error, floating point exception, segmentation violation, bad system call).
///
/// The handler logs "got fatal signal N: description" at ALARM, and the supervisor's line when
/// the published run asks for it, marks the run as failed in its status directory and ends the
/// process with exit status 1; without a run with 255. A temporary log file is removed.
///
/// It works in any thread at any moment, whatever lock that thread holds: it takes none,
/// allocates nothing and leaves by `_exit`. SIGALRM is left alone, because it ends an unanswered
/// keyboard prompt.
void InstallFatalSignalHandler();

/// From here on the process ends as it has decided to, whatever signals of the list are sent to
/// it; only a fault of its own still ends it as failed. To be called by the last thread.
void BlockFatalSignals() noexcept;
