#pragma once

#include <new>
#include <string_view>

#include "base/error_exception.h"

/// A lack of memory whose use stands in the log already.
class TOLD_LACK_OF_MEMORY : public ERROR_NO_MEMORY {};

/// "not enough memory for <kind> <name>" at ALARM, then TOLD_LACK_OF_MEMORY.
[[noreturn]] void RefuseForMemory(const char* kind, std::string_view name);

/// Does the work. An allocation that fails in it becomes ERROR_NO_MEMORY, after an ALARM line that
/// tells what the memory was for: "file", "parameter" or the like, and its name. Of several calls
/// around each other the innermost tells.
template <class WORK>
decltype(auto) WithMemoryFor(const char* kind, std::string_view name, const WORK& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    RefuseForMemory(kind, name);
  } catch (const TOLD_LACK_OF_MEMORY&) {
    throw;
  } catch (const ERROR_NO_MEMORY&) {
    RefuseForMemory(kind, name);
  }
}
