#pragma once

#include <string>

#include "report/run_record.h"

/// One HTML page that tells how a run went, pictures included: it refers to no other file. `master`
/// may be empty.
std::string MakeReportPage(const RUN_RECORD& run, const std::string& master);
