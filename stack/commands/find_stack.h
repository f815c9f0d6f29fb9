#pragma once

#include <string>

#include "description/stack_folder.h"

/// The directory of a stack that is named by its description or by the directory itself. Throws
/// STACK_ERROR for an unusable description.
STACK_FOLDER FindStack(const std::string& name);
