#pragma once

#include <string>
#include <vector>

#include "description/stack_folder.h"

/// The last start of a stack, as its directory keeps it.
struct STACK_START {
  std::string name;                    ///< of the stack
  std::string description;             ///< path
  std::vector<std::string> arguments;  ///< options of the start, for another one like it
  std::vector<std::string> slaves;     ///< all of the description, in its order
  double begun = 0.0;                  ///< seconds since 1970
};

/// Throws std::system_error.
void WriteStackStart(const STACK_FOLDER& stack, const STACK_START& start);
/// Throws STACK_ERROR when the stack was never started, or the file is none.
STACK_START ReadStackStart(const STACK_FOLDER& stack);

/// Names that the description has now and the last start did not know. None while the description
/// cannot be read.
std::vector<std::string> SlavesSince(const STACK_START& start);
