#pragma once

/// While one lives, the non-throwing allocations of the thread that made it fail, but for the
/// first `granted` of them.
class FAILING_ALLOCATION {
 public:
  explicit FAILING_ALLOCATION(int granted = 0);
  ~FAILING_ALLOCATION();
  FAILING_ALLOCATION(const FAILING_ALLOCATION&) = delete;
  FAILING_ALLOCATION& operator=(const FAILING_ALLOCATION&) = delete;
};
