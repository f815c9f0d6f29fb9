#pragma once

#include <string>

#include "run_folder.h"

/// `slctool check-run` in a folder, whose files it must leave as they are.
PROCESS_END CheckRun(const RUN_FOLDER& folder);

/// The check of a run that will fail: it must say so, with each of these lines of the run's log.
/// Without the tools nothing is checked.
void ExpectCheckSays(const RUN_FOLDER& folder, const std::string& alarms);
