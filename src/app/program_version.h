#pragma once

#include "logging/version_record.h"

/// What the log, the processing history and the supervisor are told about this program. The name
/// of the configuration file is left empty.
VERSION_RECORD ProgramVersion();
