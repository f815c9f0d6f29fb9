#pragma once

#include "control/controller_ifc.h"

/// Logs at WARNING what is given but read by nothing: names in the argument list and in the
/// configuration file that are no parameters, and environment variables that are called almost as
/// one is. A name in the argument list is "-" and a letter, and no known name's value.
void WarnOfUnknownParameters(CONTROLLER_IFC& controller);
