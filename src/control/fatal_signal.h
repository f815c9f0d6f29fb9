#pragma once

/// Installs the handler for the signals that end a run: hangup, interrupt, quit, termination,
/// abort, urgent socket condition, exceeded limits, and the faults (illegal instruction, bus
/// error, floating point exception, segmentation violation, bad system call).
///
/// The handler logs "got fatal signal N: description" at ALARM, and the supervisor's line when
/// the controller asks for it, marks the run as failed in its status directory and ends the
/// process with exit status 1; without a controller with 255.
///
/// It works in any thread at any moment, whatever lock that thread holds: it takes none,
/// allocates nothing and leaves by `_exit`. SIGALRM is left alone, because it ends an unanswered
/// keyboard prompt.
void InstallFatalSignalHandler();

/// From here on the process ends as it has decided to, whatever signals of the list are sent to
/// it; only a fault of its own still ends it as failed. To be called by the last thread.
void BlockFatalSignals() noexcept;
