#pragma once

#include <functional>

/// Is told which part of the work, 0 to 1, is done.
using PROGRESS = std::function<void(double part)>;

/// A bar that tells how much of a long work is done, drawn over itself on standard error while it
/// lives. Where that is no terminal nothing is written.
class PROGRESS_BAR {
 public:
  PROGRESS_BAR();
  ~PROGRESS_BAR();
  PROGRESS_BAR(const PROGRESS_BAR&) = delete;
  PROGRESS_BAR& operator=(const PROGRESS_BAR&) = delete;

  /// `part` of the work, 0 to 1, is done.
  void Show(double part);

 private:
  bool on_terminal_;
  int shown_percent_ = -1;
};
