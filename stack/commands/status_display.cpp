#include "commands/status_display.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <iostream>
#include <sstream>

namespace {

/// Cut to the terminal, so that each line takes one of it: wrapped ones could not be replaced.
std::vector<std::string> FittingLines(const std::string& text) {
  winsize size{};
  const bool is_known = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  const std::size_t columns = is_known ? size.ws_col : 80U;
  const std::size_t rows = is_known && size.ws_row > 2 ? size.ws_row - 2U : 22U;
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    // No letter has more columns than bytes.
    lines.push_back(line.size() < columns ? line : line.substr(0, columns - 2) + "~");
  }
  if (lines.size() > rows) {
    const std::size_t hidden = lines.size() - rows;
    lines.resize(rows);
    lines.push_back("  ... " + std::to_string(hidden) + " more lines");
  }
  return lines;
}

}  // namespace

STATUS_DISPLAY::STATUS_DISPLAY() : on_terminal_(::isatty(STDOUT_FILENO) == 1) {}

void STATUS_DISPLAY::Show(const std::vector<STACK_STATUS>& statuses) {
  std::string counts;
  std::string first_lines;
  std::string text;
  for (const STACK_STATUS& status : statuses) {
    const std::string one = StatusText(status);
    counts += one.substr(0, one.find_first_of(";\n"));
    first_lines += one.substr(0, one.find('\n') + 1);
    text += one;
  }
  if (on_terminal_) {
    ClearLast();
    for (const std::string& line : FittingLines(text)) {
      std::cout << line << "\n";
      ++lines_shown_;
    }
    std::cout << std::flush;
  } else if (counts != counts_shown_) {
    counts_shown_ = counts;
    std::cout << first_lines << std::flush;
  }
}

void STATUS_DISPLAY::ShowAtEnd(const std::vector<STACK_STATUS>& statuses) {
  ClearLast();
  for (const STACK_STATUS& status : statuses) {
    std::cout << StatusText(status);
  }
  std::cout << std::flush;
}

void STATUS_DISPLAY::ClearLast() {
  if (lines_shown_ > 0) {
    std::cout << "\x1b[" << lines_shown_ << "A\x1b[J";
    lines_shown_ = 0;
  }
}
