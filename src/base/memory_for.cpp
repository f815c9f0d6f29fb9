#include "base/memory_for.h"

#include "logging/logging.h"

void RefuseForMemory(const char* kind, std::string_view name) {
  try {
    Log() << LOGGING_LEVEL_T::ALARM << "not enough memory for " << kind << ' ' << name;
  } catch (const std::bad_alloc&) {  // nor for the line: the error still says what was missing
  }
  throw TOLD_LACK_OF_MEMORY();
}
