#pragma once

#include <string>

#include "status/stack_status.h"

/// Shows a stack's status again and again on standard output: at a terminal in place, elsewhere
/// only the first line and only when the numbers of slaves in it have changed.
class STATUS_DISPLAY {
 public:
  STATUS_DISPLAY();

  void Show(const STACK_STATUS& status);
  /// The last one, whole.
  void ShowAtEnd(const STACK_STATUS& status);

 private:
  void ShowInPlace(const std::string& text);

  bool on_terminal_;
  long lines_shown_ = 0;
  std::string counts_shown_;
};
