#include "common/progress_bar.h"

#include <unistd.h>

#include <iostream>
#include <string>

PROGRESS_BAR::PROGRESS_BAR() : on_terminal_(::isatty(STDERR_FILENO) == 1) {}

PROGRESS_BAR::~PROGRESS_BAR() {
  if (shown_percent_ >= 0) {
    std::cerr << "\n";
  }
}

void PROGRESS_BAR::Show(double part) {
  constexpr int percent_a_mark = 2;
  const int percent = static_cast<int>(100.0 * part);
  if (!on_terminal_ || percent == shown_percent_) {
    return;
  }
  shown_percent_ = percent;
  std::string bar(100 / percent_a_mark, ' ');
  bar.replace(0, static_cast<std::size_t>(percent / percent_a_mark),
              static_cast<std::size_t>(percent / percent_a_mark), '#');
  std::cerr << "\r[" << bar << "] " << percent << " %" << std::flush;
}
