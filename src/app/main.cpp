#include <cstdlib>
#include <iostream>

#include "app/driver.h"
#include "app/terminal_answer.h"

int main(int argc, char** argv) {
  if (const auto answer = TerminalAnswer(argc, argv)) {
    std::cout << *answer << std::flush;
    return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  RunDriver(argc, argv);
}
