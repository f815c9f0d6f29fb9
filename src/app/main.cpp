#include "app/driver.h"

int main(int argc, char** argv) {
  RunDriver(argc, argv);
}
