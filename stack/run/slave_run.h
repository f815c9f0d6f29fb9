#pragma once

#include "run/slave_record.h"
#include "run/stack_folder.h"

/// Resamples one slave as its plan says, on the machine and in the process where it is called, and
/// keeps the record. Does nothing for a slave that is finished already; repeats an attempt that
/// died of a signal; begins none once there is a STOP file. SIGINT, SIGTERM and SIGHUP end the
/// attempt and cancel the run. Returns the state at the end.
///
/// Throws std::exception when the plan cannot be read or the record not be written.
RUN_STATE RunSlave(const SLAVE_FOLDER& folder);
