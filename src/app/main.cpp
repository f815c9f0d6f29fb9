#include <cstdlib>
#include <iostream>

#include "app/driver.h"
#include "app/help_and_version.h"

int main(int argc, char** argv) {
  if (const auto answer = HelpOrVersion(argc, argv)) {
    std::cout << *answer << std::flush;
    return std::cout ? EXIT_SUCCESS : EXIT_FAILURE;
  }
  RunDriver(argc, argv);
}
