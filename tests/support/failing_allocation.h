#pragma once

#include "base/error_exception.h"

/// While one lives, the non-throwing allocations of the thread that made it fail, but for the
/// first `granted` of them.
class FAILING_ALLOCATION {
 public:
  explicit FAILING_ALLOCATION(int granted = 0);
  ~FAILING_ALLOCATION();
  FAILING_ALLOCATION(const FAILING_ALLOCATION&) = delete;
  FAILING_ALLOCATION& operator=(const FAILING_ALLOCATION&) = delete;
};

/// Tries an action with one allocation more each time until it goes through; how often it was
/// refused for lack of memory.
template <class ACTION>
int RefusalsUntilMemorySuffices(ACTION action) {
  for (int granted = 0;; ++granted) {
    try {
      const FAILING_ALLOCATION failing(granted);
      action();
      return granted;
    } catch (const ERROR_NO_MEMORY&) {
    } catch (const char*) {  // of containers
    }
  }
}
