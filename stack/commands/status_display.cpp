#include "commands/status_display.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

STATUS_DISPLAY::STATUS_DISPLAY() : on_terminal_(::isatty(STDOUT_FILENO) == 1) {}

void STATUS_DISPLAY::Show(const STACK_STATUS& status) {
  const std::string text = StatusText(status);
  if (on_terminal_) {
    ShowInPlace(text);
    return;
  }
  const std::string counts = text.substr(0, text.find_first_of(";\n"));
  if (counts != counts_shown_) {
    counts_shown_ = counts;
    std::cout << text.substr(0, text.find('\n')) << std::endl;
  }
}

void STATUS_DISPLAY::ShowAtEnd(const STACK_STATUS& status) {
  if (on_terminal_) {
    ShowInPlace(StatusText(status));
  } else {
    std::cout << StatusText(status) << std::flush;
  }
}

void STATUS_DISPLAY::ShowInPlace(const std::string& text) {
  if (lines_shown_ > 0) {
    std::cout << "\x1b[" << lines_shown_ << "A\x1b[J";
  }
  std::cout << text << std::flush;
  lines_shown_ = std::count(text.begin(), text.end(), '\n');
}
