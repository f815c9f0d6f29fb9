#pragma once

#include <string>
#include <vector>

#include "status/stack_status.h"

/// Shows the status of stacks again and again on standard output: at a terminal in place, elsewhere
/// only the first line of each and only when the numbers of slaves in it have changed.
class STATUS_DISPLAY {
 public:
  STATUS_DISPLAY();

  void Show(const std::vector<STACK_STATUS>& statuses);
  /// The last one, whole.
  void ShowAtEnd(const std::vector<STACK_STATUS>& statuses);

 private:
  void ClearLast();

  bool on_terminal_;
  long lines_shown_ = 0;
  std::string counts_shown_;
};
