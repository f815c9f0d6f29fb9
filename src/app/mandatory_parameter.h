#pragma once

#include <string>

#include "control/controller_ifc.h"

/// A mandatory parameter; asked for at the keyboard when no source has it. Throws the text of a
/// parameter that cannot be had.
std::string MandatoryParameter(CONTROLLER_IFC& controller, const char* name);
