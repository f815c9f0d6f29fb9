#pragma once

#include "description/stack_folder.h"
#include "run/slave_record.h"

/// Resamples one slave as its plan says, on the machine and in the process where it is called, and
/// keeps the record. Does nothing for a slave that is finished already; repeats an attempt that
/// died of a signal; begins none once there is a STOP file. SIGINT, SIGTERM and SIGHUP end the
/// attempt and cancel the run. On a node of Slurm that lacks the program or an input the slave goes
/// on waiting, with that as the reason. Returns the state at the end.
///
/// Throws std::exception when the plan cannot be read or the record not be written.
SLAVE_STATE RunSlave(const SLAVE_FOLDER& folder);
